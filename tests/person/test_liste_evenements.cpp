// Les listes d'une personne : chargement en deux passes dans l'ordre des rangs, rang
// d'union, liens remplis, personne inchangée qui n'écrit rien, lecture filtrée par année,
// personne supprimée puis rendue, conjoint encore supprimé.
#include <gtest/gtest.h>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/storage/datamodulebdd.h"

namespace rqbase {
namespace {

TEST(VectorTV, PositionsHorsBornesEtClassementStable) {
  TVectorTV<TEvenementTV> v;
  auto elt = [](long no, int rg) {
    TEvenementTV e;
    e.Enreg.No = no;
    e.RgUnion = rg;
    return e;
  };
  v.Ajoute(elt(1, 2));
  v.Insere(10, elt(2, 0));  // au-delà de la fin : au bout
  v.Insere(-4, elt(3, 2));  // négatif : en tête
  v.Insere(1, elt(4, 0));
  EXPECT_EQ(v.GetNbElt(), 4);
  EXPECT_EQ(v.Find(2), 3);
  EXPECT_EQ(v.Find(0), -1);
  EXPECT_EQ(v.Lit(4), nullptr);
  v.Supprime(7);
  v.Classement();
  std::vector<long> ordre;
  for (const auto& e : v) ordre.push_back(e.Enreg.No);
  EXPECT_EQ(ordre, (std::vector<long>{4, 2, 3, 1}));
}

class ListesPersonneTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(Gest->EnErreur());
    Bdd = Gest->ModuleBDD();
    ASSERT_NE(Bdd, nullptr);
    Bdd->Contexte = Gest.get();
  }
  long Ajoute(const char* nom) {
    TPerson p(Gest->FicPersons());
    p.NouvelleFiche(-3);
    p.SetNom(nom);
    p.Enregistrement();
    return p.No();
  }
  TEvenementTV Even(const char* libelle, const char* date, long a, long b = 0) {
    TEvenementTV e;
    e.Enreg.SetLibelle(libelle);
    e.Enreg.Date = TDateRQ('G', date);
    e.Enreg.NoPersA = a;
    e.Enreg.NoPersB = b;
    return e;
  }
  std::vector<std::string> Libelles(const TListesChps& l) {
    std::vector<std::string> r;
    for (const auto& e : *l.Evens) r.push_back(e.Enreg.Libelle);
    return r;
  }
  void Supprime(long no) {
    TPerson p(Gest->FicPersons(), no);
    p.Enreg.Supprime = 'O';
    p.Enregistrement();
  }
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TModuleBDD* Bdd = nullptr;
};

TEST_F(ListesPersonneTest, ChargementEnDeuxPassesPuisEnregistrementSansChangement) {
  const long pierre = Ajoute("PIERRE"), marie = Ajoute("MARIE"), jean = Ajoute("JEAN");
  // Pierre : naissance, union avec Marie (portée par Marie, rang 2 chez Pierre), décès.
  TPerson p(Gest->FicPersons(), pierre);
  p.AjouteConj(jean);
  p.AjouteConj(marie);
  p.Enregistrement();
  TListesChps l;
  l.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
  l.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  l.Evens->Ajoute(Even("NAISSANCE", "01/01/1850", pierre));
  l.Evens->Ajoute(Even("MARIAGE", "02/02/1875", marie, pierre));
  l.Evens->Ajoute(Even("DECES", "../../1900", pierre));
  TChpsSimpleTV prof;
  prof.Enreg.SetLibelle("PROFESSION");
  prof.Enreg.SetDonnee("meunier");
  prof.Enreg.NoPersA = pierre;
  l.Chps->Ajoute(prof);
  EXPECT_EQ(EnregistrerChpsOfPerson(*Bdd, p, l), 4);
  const long noMariage = l.Evens->Lit(1)->Enreg.No;
  EXPECT_GT(noMariage, 0);
  EXPECT_EQ(p.Enreg.LiensEvenement[1], noMariage);
  EXPECT_EQ(p.Enreg.LiensChpsSimple[0], l.Chps->Lit(0)->Enreg.No);

  TPerson relue(Gest->FicPersons(), pierre);
  TListesChps lue;
  ChargerLienChpsOfPerson(*Bdd, relue, lue);
  EXPECT_EQ(Libelles(lue), (std::vector<std::string>{"NAISSANCE", "MARIAGE", "DECES"}));
  EXPECT_EQ(lue.Evens->Lit(1)->RgUnion, 2);  // Marie est la seconde conjointe
  EXPECT_EQ(lue.Evens->Lit(0)->RgUnion, 0);
  EXPECT_EQ(relue.Enreg.LiensEvenement[1], noMariage);
  EXPECT_EQ(relue.Enreg.LiensEvenement[3], 0);
  EXPECT_EQ(relue.Enreg.EvenLoaded, 1);
  ASSERT_EQ(lue.Chps->GetNbElt(), 1);
  EXPECT_EQ(lue.Chps->Lit(0)->Enreg.Donnee, "meunier");
  // Inchangée : aucune ligne écrite. Le décès changé : une.
  EXPECT_EQ(EnregistrerChpsOfPerson(*Bdd, relue, lue), 0);
  lue.Evens->Lit(2)->Enreg.SetDonnee("de vieillesse");
  EXPECT_EQ(EnregistrerChpsOfPerson(*Bdd, relue, lue), 1);

  // Chez Marie, le même mariage, une seule ligne.
  TPerson m(Gest->FicPersons(), marie);
  TListesChps lm;
  ChargerLienChpsOfPerson(*Bdd, m, lm);
  ASSERT_EQ(lm.Evens->GetNbElt(), 1);
  EXPECT_EQ(lm.Evens->Lit(0)->Enreg.No, noMariage);

  // Un numéro sous 1 : listes vides et chargées, rien lu ; rien écrit non plus.
  TPerson vide(Gest->FicPersons());
  TListesChps lv;
  ChargerLienChpsOfPerson(*Bdd, vide, lv);
  EXPECT_EQ(lv.Evens->GetNbElt(), 0);
  lv.Evens->Ajoute(Even("NAISSANCE", "01/01/1900", 0));
  EXPECT_EQ(EnregistrerChpsOfPerson(*Bdd, vide, lv), 0);
  EXPECT_EQ(lv.Evens->Lit(0)->Enreg.No, 0);
}

TEST_F(ListesPersonneTest, LectureFiltreeParAnneeDonneUnePersonneReduite) {
  const long no = Ajoute("FILTRE");
  TPerson p(Gest->FicPersons(), no);
  p.AjouteConj(Ajoute("CONJ"));
  p.Enreg.Conjoints[0].Valeur = 77;
  p.Enregistrement();
  TListesChps l;
  l.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
  l.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  const std::vector<std::pair<const char*, const char*>> faits{
      {"NAISSANCE", "01/01/1850"}, {"SANS_DATE_1", ""}, {"REPUBLICAIN", "01/VEND/08"},
      {"RETRAITE", "01/01/1950"},  {"SANS_DATE_2", ""}, {"RECENSEMENT", "01/01/1880"}};
  for (const auto& [lib, date] : faits) {
    TEvenementTV e = Even(lib, date, no);
    if (std::string(lib) == "REPUBLICAIN") e.Enreg.Date.SetCalendrier('R');  // an VIII : 1799
    e.Enreg.SetDonnee("x");  // un événement sans date n'est pas vide pour autant
    l.Evens->Ajoute(e);
  }
  TChpsSimpleTV c;
  c.Enreg.SetLibelle("PROFESSION");
  c.Enreg.SetDonnee("maçon");
  c.Enreg.NoPersA = no;
  l.Chps->Ajoute(c);
  EnregistrerChpsOfPerson(*Bdd, p, l);

  TPerson reduite(Gest->FicPersons(), no);
  const int32_t avant = reduite.Enreg.Conjoints[0].Valeur;
  EXPECT_EQ(avant, 77);
  reduite.Enreg.Note = 12;
  TListesChps lr;
  ChargerLienChpsOfPerson(*Bdd, reduite, lr, 1900);
  // Le premier sans date est tombé au premier refus, le second après lui.
  EXPECT_EQ(Libelles(lr), (std::vector<std::string>{"NAISSANCE", "REPUBLICAIN", "RECENSEMENT"}));
  EXPECT_EQ(lr.Chps->GetNbElt(), 0);
  EXPECT_EQ(reduite.Enreg.LiensChpsSimple[0], 0);
  EXPECT_EQ(reduite.Enreg.Note, 0);
  const int32_t valeur = reduite.Enreg.Conjoints[0].Valeur;  // champ d'une structure tassée
  EXPECT_EQ(valeur, 0);
  EXPECT_EQ(reduite.Enreg.LiensEvenement[0], lr.Evens->Lit(0)->Enreg.No);
  EXPECT_EQ(reduite.Enreg.LiensEvenement[1], lr.Evens->Lit(1)->Enreg.No);
  EXPECT_EQ(reduite.Enreg.LiensEvenement[2], lr.Evens->Lit(2)->Enreg.No);
  EXPECT_EQ(reduite.Enreg.LiensEvenement[3], 0);
  // Filtre à 1800 : l'an VIII (1799, comparé en grégorien) reste ; 1850 est refusé et fait
  // tomber le premier sans date.
  TPerson avant1800(Gest->FicPersons(), no);
  TListesChps l1800;
  ChargerLienChpsOfPerson(*Bdd, avant1800, l1800, 1800);
  EXPECT_EQ(Libelles(l1800), (std::vector<std::string>{"REPUBLICAIN"}));
  // À 1798, l'an VIII (1799) est refusé lui aussi : la comparaison ne se fait pas sur « 08 ».
  TPerson avant1798(Gest->FicPersons(), no);
  TListesChps l1798;
  ChargerLienChpsOfPerson(*Bdd, avant1798, l1798, 1798);
  EXPECT_EQ(Libelles(l1798), std::vector<std::string>{});
}

TEST_F(ListesPersonneTest, PersonneSupprimeeNonCacheeEtLigneVide) {
  const long a = Ajoute("A"), b = Ajoute("B");
  TEvenement seul(Bdd), couple(Bdd), vide(Bdd);
  seul.Enreg.SetLibelle("NAISSANCE");
  seul.Enreg.NoPersA = a;
  couple.Enreg.SetLibelle("MARIAGE");
  couple.Enreg.NoPersA = b;
  couple.Enreg.NoPersB = a;
  vide.Enreg.NoPersA = a;  // ni libellé ni rien : refusée au chargement
  for (TEvenement* e : {&seul, &couple, &vide}) Bdd->EnregistrementEven(e);
  Supprime(a);
  TPerson pa(Gest->FicPersons(), a);
  TListesChps l;
  ChargerLienChpsOfPerson(*Bdd, pa, l);
  ASSERT_EQ(Libelles(l), (std::vector<std::string>{"NAISSANCE", "MARIAGE"}));
  // Les données de couple d'une personne supprimée ne désignent plus le conjoint vivant.
  EXPECT_EQ(l.Evens->Lit(1)->Enreg.NoPersA, -b);
  EXPECT_EQ(l.Evens->Lit(1)->Enreg.NoPersB, -b);
  EXPECT_EQ(l.Evens->Lit(0)->Enreg.NoPersA, 0);
  EXPECT_EQ(pa.Enreg.LiensEvenement[2], 0);
}

TEST_F(ListesPersonneTest, CoupleDontLeConjointResteSupprimeResteCache) {
  const long a = Ajoute("A"), b = Ajoute("B");
  TEvenement seul(Bdd), couple(Bdd);
  seul.Enreg.SetLibelle("NAISSANCE");
  seul.Enreg.NoPersA = a;
  couple.Enreg.SetLibelle("MARIAGE");
  couple.Enreg.NoPersA = a;
  couple.Enreg.NoPersB = b;
  Bdd->EnregistrementEven(&seul);
  Bdd->EnregistrementEven(&couple);
  Supprime(a);
  Bdd->MasquerChpsOfPerson(a, false);
  Supprime(b);
  Bdd->MasquerChpsOfPerson(b, false);  // la ligne du couple est déjà cachée par a
  // a revient, b est encore supprimé : le mariage reste caché.
  TPerson pa(Gest->FicPersons(), a);
  pa.Enreg.Supprime = ' ';
  pa.Enregistrement();
  Bdd->MasquerChpsOfPerson(a, true);
  TListesChps l;
  ChargerLienChpsOfPerson(*Bdd, pa, l);
  EXPECT_EQ(Libelles(l), (std::vector<std::string>{"NAISSANCE"}));
  // b revient à son tour : le mariage reparaît chez les deux.
  TPerson pb(Gest->FicPersons(), b);
  pb.Enreg.Supprime = ' ';
  pb.Enregistrement();
  Bdd->MasquerChpsOfPerson(b, true);
  ChargerLienChpsOfPerson(*Bdd, pa, l);
  EXPECT_EQ(Libelles(l), (std::vector<std::string>{"NAISSANCE", "MARIAGE"}));
}

}  // namespace
}  // namespace rqbase
