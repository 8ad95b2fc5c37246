// Les événements et champs simples d'une personne dans un vrai dossier : place habituelle,
// limite des 100, événement de couple partagé, ordre chronologique et par type, rangs
// d'union, équivalents, professions, citations, lecture filtrée, copies indépendantes.
#include <gtest/gtest.h>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_evens.h"

#include <filesystem>

namespace rqbase {
namespace {

class ChampsPersonneTest : public testing::Test {
 protected:
  void SetUp() override {
    InstalleDialogue(&Dlg);
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(Gest->EnErreur());
    ASSERT_NE(Gest->GetDefChpsCs(), nullptr);
  }
  void TearDown() override { InstalleDialogue(nullptr); }

  long Ajoute(const char* nom, char sexe = 'M') {
    TPerson p(Gest->FicPersons());
    p.NouvelleFiche(-3);
    p.SetNom(nom);
    p.SetSexe(sexe);
    p.Enregistrement();
    return p.No();
  }
  // Un événement neuf ajouté et enregistré ; rend son numéro.
  long Even(TPerson& p, const char* libelle, const char* date, long conjoint = 0, bool surConjoint = true) {
    TEvenement e(Gest->ModuleBDD());
    e.Enreg.SetLibelle(libelle);
    if (*date) e.Enreg.Date = TDateRQ('G', date);
    e.Enreg.NoPersA = p.No();
    e.Enreg.NoPersB = conjoint;
    EXPECT_TRUE(p.AjoutEven(&e, true, surConjoint, true));
    return e.Enreg.No;
  }
  std::vector<std::string> Libelles(TPerson& p) {
    std::vector<std::string> l;
    for (int rg = 1; rg <= p.GetNbInfoEven(); ++rg) {
      TEvenement::TEnreg e;
      p.EvenNo(rg, &e);
      l.push_back(e.Libelle + (e.Date.DateVide() ? "" : "@" + e.Date.GetDate()));
    }
    return l;
  }
  // La personne relue du disque et de la base, sans le cache.
  TPerson Relue(long no) {
    if (TCachePersonnes* c = Gest->FicPersons()->Cache()) c->RazBuffers();
    return TPerson(Gest->FicPersons(), no, true);
  }

  TDialogueFixe Dlg;
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
};

TEST_F(ChampsPersonneTest, PlaceHabituelleEtOrdreChronologiqueGardeLesNonDates) {
  TPerson p(Gest->FicPersons(), Ajoute("MARTIN"), true);
  Even(p, "DECES", "03/04/1900");
  Even(p, "NAISSANCE", "");  // sans date : elle garde sa place à l'enregistrement
  Even(p, "BAPTEME", "02/01/1850");
  Even(p, "NAISSANCE", "02/01/1850");
  // Le même jour, l'ordre du catalogue met la naissance avant le baptême ; la naissance non
  // datée reste à sa place, les autres se rangent autour d'elle.
  TPerson r = Relue(p.No());
  EXPECT_EQ(Libelles(r), (std::vector<std::string>{"NAISSANCE", "NAISSANCE@02/01/1850", "BAPTEME@02/01/1850",
                                                    "DECES@03/04/1900"}));
  // Par type : les libellés dans l'ordre du catalogue, l'ordre relatif gardé.
  r.ClassementTypeEven();
  const auto types = Libelles(r);
  ASSERT_EQ(types.size(), 4u);
  EXPECT_EQ(types[0], "NAISSANCE");
  EXPECT_EQ(types[1], "NAISSANCE@02/01/1850");
  EXPECT_EQ(types[3], "DECES@03/04/1900");
}

TEST_F(ChampsPersonneTest, LeCentUniemeEvenementEstRefuseSansRienChanger) {
  TPerson p(Gest->FicPersons(), Ajoute("PLEIN"), true);
  Gest->ModuleBDD()->BeginImport();
  for (int i = 0; i < 100; ++i) {
    TEvenement e(Gest->ModuleBDD());
    e.Enreg.SetLibelle("RESIDENCE");
    e.Enreg.NoPersA = p.No();
    ASSERT_TRUE(p.AjoutEven(&e, true, false, false));
  }
  p.Enregistrement();
  Gest->ModuleBDD()->EndImport();
  TPerson r = Relue(p.No());
  ASSERT_EQ(r.GetNbInfoEven(), 100);
  int32_t liens[TPerson::NbLiens];
  std::copy(std::begin(r.Enreg.LiensEvenement), std::end(r.Enreg.LiensEvenement), liens);
  TEvenement e(Gest->ModuleBDD());
  e.Enreg.SetLibelle("DECES");
  e.Enreg.NoPersA = r.No();
  EXPECT_FALSE(r.AjoutEven(&e, true, false, true));
  EXPECT_EQ(r.GetNbInfoEven(), 100);
  EXPECT_TRUE(std::equal(std::begin(liens), std::end(liens), r.Enreg.LiensEvenement));
  EXPECT_EQ(Dlg.Informations.size(), 1u);
  EXPECT_EQ(Relue(p.No()).GetNbInfoEven(), 100);
}

TEST_F(ChampsPersonneTest, EvenementDeCoupleUnSeulNumeroDansLesDeuxListesEtRangsDUnion) {
  const long a = Ajoute("A"), b = Ajoute("B", 'F'), c = Ajoute("C", 'F');
  TPerson pa(Gest->FicPersons(), a, true);
  pa.AjouteConj(c);
  pa.AjouteConj(b);
  pa.Enregistrement();
  TPerson pb(Gest->FicPersons(), b, true);
  pb.AjouteConj(a);
  pb.Enregistrement();
  const long u = Even(pa, "UNION", "01/06/1870", b);
  TPerson ra = Relue(a), rb = Relue(b);
  EXPECT_EQ(ra.GetRgEvenByID(u), 1);
  EXPECT_EQ(rb.GetRgEvenByID(u), 1);
  EXPECT_NE(ra.RetourneRgEven(u), 0);
  EXPECT_NE(rb.RetourneRgEven(u), 0);
  EXPECT_EQ(ra.Evens()->Lit(0)->RgUnion, 2);  // b est le deuxième conjoint de a
  // b passe au premier rang : le rang d'union suit, dans la liste et à la relecture.
  ASSERT_TRUE(ra.DeplacerConjVersPos(b, 1));
  ra.MajEvenRgUnion();
  EXPECT_EQ(ra.Evens()->Lit(0)->RgUnion, 1);
  ra.Enregistrement();
  EXPECT_EQ(Relue(a).Evens()->Lit(0)->RgUnion, 1);
  // Un changement par un partenaire est vu par l'autre : un seul enregistrement.
  TEvenement::TEnreg e;
  rb.EvenNo(1, &e);
  e.SetDonnee("mariage civil");
  rb.MajEvenNo(1, &e);
  rb.Enregistrement();
  TPerson ra2 = Relue(a);
  ra2.EvenNo(ra2.GetRgEvenByID(u), &e);
  EXPECT_EQ(e.Donnee, "mariage civil");
}

TEST_F(ChampsPersonneTest, EquivalentsNaissanceUnionEtLectureSansCharger) {
  const long no = Ajoute("EQUIV");
  TPerson p(Gest->FicPersons(), no, true);
  Even(p, "NAISSANCE", "");
  Even(p, "BAPTEME", "04/05/1801");
  TEvenement::TEnreg e;
  // La naissance sans date cède au baptême daté, le catalogue les disant équivalents.
  EXPECT_GT(p.RetEvenNaissance(&e), 0);
  EXPECT_EQ(e.Libelle, "BAPTEME");
  EXPECT_GT(p.RetEvenNaissance(&e, nullptr, true), 0);
  EXPECT_EQ(e.Libelle, "NAISSANCE");
  EXPECT_EQ(p.RetEvenDeces(&e), 0);
  // Sans listes chargées, la base répond.
  TPerson nue(Gest->FicPersons(), no);
  ASSERT_EQ(nue.Evens(), nullptr);
  TEvenement ev(Gest->ModuleBDD());
  EXPECT_TRUE(nue.GetEvenNaissance(&ev));
  EXPECT_EQ(nue.Evens(), nullptr);
}

TEST_F(ChampsPersonneTest, ProfessionsSeparateurEtSurplus) {
  TPerson p(Gest->FicPersons(), Ajoute("PROF"), true);
  p.AjusteChampsProf("a,b");
  EXPECT_EQ(p.GetToutesProfession(), "a,b");
  p.Enregistrement();
  TPerson r = Relue(p.No());
  EXPECT_EQ(r.GetToutesProfession(), "a,b");
  r.AjusteChampsProf("c");  // la première prend c, la seconde part
  EXPECT_EQ(r.GetToutesProfession(), "c");
  r.AjusteChampsProf("");
  EXPECT_EQ(r.GetToutesProfession(), "");
}

TEST_F(ChampsPersonneTest, CitationsDesDeuxCotes) {
  const long a = Ajoute("A"), t1 = Ajoute("T1"), t2 = Ajoute("T2");
  TPerson pa(Gest->FicPersons(), a, true);
  const long ev = Even(pa, "NAISSANCE", "01/01/1900");
  EXPECT_FALSE(Relue(t1).IsCitee());
  // Les personnes citées s'écrivent avec l'événement ; la table des citations de chacune en
  // vient à la relecture.
  TEvenement e(Gest->ModuleBDD(), ev);
  e.ChargerTableauxBDD();
  TPersAssociee cite;
  cite.Lien = TLienPers(t1);
  e.Enreg.AjoutPersAssociee(cite);
  cite.Lien = TLienPers(t2);
  e.Enreg.AjoutPersAssociee(cite);
  Gest->ModuleBDD()->EnregistrementEven(&e);  // la ligne ne change pas, ses personnes citées si
  EXPECT_TRUE(Relue(t1).IsCitee());
  EXPECT_EQ(Relue(t1).LienCitation(0), ev);
  EXPECT_EQ(Relue(t2).LienCitation(0), ev);
  EXPECT_TRUE(TPerson::IsInPersAssociee(e.Enreg.PersAssociees, t2));
  EXPECT_FALSE(TPerson::IsInPersAssociee(e.Enreg.PersAssociees, a));
  e.Enreg.SupprPersAssocieeNo(t1);
  Gest->ModuleBDD()->EnregistrementEven(&e);  // la ligne elle-même n'a pas changé
  EXPECT_EQ(Relue(t1).LienCitation(0), 0);
  EXPECT_EQ(Relue(t2).LienCitation(0), ev);
  // La table des citations : pas de doublon, retrait qui remonte les suivantes.
  TPerson::TEnregPublic r;
  EXPECT_TRUE(r.AjoutLienCitation(7));
  EXPECT_FALSE(r.AjoutLienCitation(7));
  EXPECT_TRUE(r.AjoutLienCitation(9));
  EXPECT_TRUE(r.SupprLienCitation(7));
  EXPECT_EQ(r.LiensCitation[0], 9);
  EXPECT_EQ(r.LiensCitation[1], 0);
}

TEST_F(ChampsPersonneTest, SuppressionRestitutionEtCopiesIndependantes) {
  TPerson p(Gest->FicPersons(), Ajoute("COPIE"), true);
  const long n = Even(p, "NAISSANCE", "01/01/1900");
  Even(p, "DECES", "01/01/1970");
  TPerson copie(p);
  ASSERT_TRUE(p.SupprEvenNo(1, true));
  EXPECT_EQ(p.GetNbInfoEven(), 1);
  EXPECT_EQ(copie.GetNbInfoEven(), 2);  // la copie a ses propres listes
  EXPECT_EQ(p.RetourneRgEven(n), 0);
  EXPECT_EQ(Relue(p.No()).GetNbInfoEven(), 1);
  p.RestituerEvenNoEnreg(n, 0, 0);
  p.Enregistrement();
  TPerson r = Relue(p.No());
  EXPECT_EQ(r.GetRgEvenByID(n), 1);
  EXPECT_FALSE(r.SupprEvenNo(0, false));
  EXPECT_FALSE(r.SupprEvenNo(3, false));
}

TEST_F(ChampsPersonneTest, LectureFiltreeNeGardeQueLesEvenementsDatesJusquALAnnee) {
  TPerson p(Gest->FicPersons(), Ajoute("FILTRE"), true);
  Even(p, "NAISSANCE", "01/01/1880");
  Even(p, "RESIDENCE", "");
  Even(p, "DECES", "01/01/1950");
  TPerson r = Relue(p.No());
  r.FiltreEvenApres(1900);
  EXPECT_EQ(Libelles(r), (std::vector<std::string>{"NAISSANCE@01/01/1880"}));
  EXPECT_EQ(r.GetNbChpsSimple(), 0);  // une copie réduite : plus de champs simples
}

}  // namespace
}  // namespace rqbase

namespace rqbase {
namespace {

// Un dossier de 2009 réduit : le fichier des personnes, et les façades qui lisent les
// anciens fichiers d'événements et de champs simples (écrits ici à leurs décalages).
class TContexte2009 : public TContexteDossier {
 public:
  explicit TContexte2009(const std::string& prs) : TContexteDossier(prs) { VersionAnnee = 2009; }
  TFicPersons* FicPersons() const override { return Persons.get(); }
  TFicEvens* FicEvens() const override { return Evens.get(); }
  TFicChpsSimple* FicChpsSimple() const override { return Chps.get(); }
  std::unique_ptr<TFicPersons> Persons;
  std::unique_ptr<TFicEvens> Evens;
  std::unique_ptr<TFicChpsSimple> Chps;
};

std::string Enreg(size_t taille, std::initializer_list<std::pair<size_t, std::string>> champs) {
  std::string o(taille, '\0');
  for (const auto& [decalage, texte] : champs) o.replace(decalage, texte.size(), texte);
  return o;
}

std::string Entier(int32_t v) { return std::string(reinterpret_cast<const char*>(&v), 4); }

TEST(ChampsPersonne2009, LesLiensDeLaFicheDesignentLesAnciensEnregistrements) {
  essai::TDossierTemp temp;
  std::filesystem::create_directories(temp.Dossier());
  // .evn : un compte de 2, une naissance datée de la personne 2, un enregistrement vide.
  essai::Ecrit(temp.Dossier() + "/Essai.evn",
               Enreg(204, {{24, Entier(2)}}) +
                   Enreg(204, {{0, "NAISSANCE"}, {24, Entier(2)}, {35, "G"}, {36, "12/03/1850"}}) +
                   Enreg(204, {}));
  // .chs : une profession.
  essai::Ecrit(temp.Dossier() + "/Essai.chs", Enreg(132, {{124, Entier(1)}}) +
                                                  Enreg(132, {{0, "PROFESSION"}, {21, "Laboureur"}, {124, Entier(2)}}));
  TContexte2009 ctx(temp.Prs());
  ctx.Persons = std::make_unique<TFicPersons>(&ctx, true);
  ctx.Evens = std::make_unique<TFicEvens>(&ctx, nullptr);
  ctx.Chps = std::make_unique<TFicChpsSimple>(&ctx, nullptr);
  TPerson p(ctx.Persons.get());
  p.NouvelleFiche(-3);
  p.NouvelleFiche(-3);
  ASSERT_EQ(p.No(), 2);
  TEnregPersonne brut{};
  brut.Type = 'P';
  brut.Supprime = ' ';
  brut.Sexe = 'M';
  brut.LiensEvenement[0] = 1;
  brut.LiensEvenement[1] = 2;   // vide : refusé, son lien effacé
  brut.LiensEvenement[2] = 9;   // hors du fichier : effacé
  brut.LiensChpsSimple[0] = 1;
  ctx.Persons->EcritEnreg(2, brut);
  TPerson lu(ctx.Persons.get(), 2, true);
  ASSERT_NE(lu.Evens(), nullptr);
  ASSERT_EQ(lu.GetNbInfoEven(), 1);
  TEvenement::TEnreg e;
  lu.EvenNo(1, &e);
  EXPECT_EQ(e.Libelle, "NAISSANCE");
  EXPECT_EQ(e.Date.GetDate(), "12/03/1850");
  EXPECT_EQ(lu.Enreg.LiensEvenement[0], 1);
  EXPECT_EQ(lu.Enreg.LiensEvenement[1], 0);
  EXPECT_EQ(lu.Enreg.LiensEvenement[2], 0);
  EXPECT_EQ(lu.GetToutesProfession(), "Laboureur");
}

}  // namespace
}  // namespace rqbase
