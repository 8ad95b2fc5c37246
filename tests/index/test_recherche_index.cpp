// Recherche dans l'index des noms : masques, texte plié, particules, plusieurs noms et prénoms,
// soundex, valeurs spéciales, sexe, période, conjoints, parents, exclusions, abandon, listes,
// équivalences, lignes de liste, critère de fait.
#include <gtest/gtest.h>

#include <cstdlib>

#include "dossier_essai.h"
#include "personne_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/index/noms_equivalents.h"
#include "rqbase/index/recherche_index.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {
namespace {

TEST(StrCmpMasque, MorceauxDansLOrdre) {
  EXPECT_EQ(StrCmpMasque("DUPONT", "DUPONT"), 0);
  EXPECT_NE(StrCmpMasque("DUPONT", "DUPON"), 0);
  EXPECT_EQ(StrCmpMasque("DUPONT", "DUP*"), 0);
  EXPECT_EQ(StrCmpMasque("DUPONT", "*ONT"), 0);
  EXPECT_EQ(StrCmpMasque("DUPONT", "*PON*"), 0);
  EXPECT_EQ(StrCmpMasque("DUPONT", "D*P*T"), 0);
  EXPECT_NE(StrCmpMasque("DUPONT", "D*T*P"), 0);  // dans l'ordre seulement
  EXPECT_NE(StrCmpMasque("DUPONT", "*DUP"), 0);   // le dernier morceau finit le texte
  EXPECT_NE(StrCmpMasque("ADUPONT", "DUP*"), 0);  // le premier le commence
  EXPECT_NE(StrCmpMasque("ABA", "ABA*ABA"), 0);   // sans chevauchement
  EXPECT_EQ(StrCmpMasque("ABABA", "ABA*BA"), 0);
  EXPECT_EQ(StrCmpMasque("", "*"), 0);
  EXPECT_EQ(StrCmpMasque("X", "***"), 0);
  EXPECT_EQ(StrCmpMasque("", ""), 0);
  EXPECT_NE(StrCmpMasque("", "A*"), 0);
  EXPECT_EQ(StrCmpMasque(nullptr, "*"), 0);
}

// La table seule, sans fichier de personnes : des numéros démesurés (ligne abîmée, numéro au-delà
// du tableau direct des personnes trouvées) répondent comme les autres, une personne trouvée
// par deux couples garde sa première ligne, et une recherche n'hérite rien de la précédente.
TEST(RechercheTableSeule, NumerosDemesuresEtRecherchesSuccessives) {
  TGestEltIndex table;
  auto ligne = [&](const char* nom, const char* prenom, int32_t no) {
    TEnregIndex e;
    e.SetNom(nom);
    e.SetPrenom(prenom);
    e.NoPers = no;
    table.Ajoute(TEltIndex(e, 0));
  };
  const int32_t grand = 2000000000;
  ligne("BERNARD", "PAUL", 7);
  ligne("DUPONT", "JEAN", grand);
  ligne("DUPONT", "PAUL", 7);
  ligne("MARTIN", "JEAN", 3);
  TEltIndex a, b;
  table.Classement(a, b);

  auto cherche = [&](const std::string& nom, const std::string& prenoms, long limite = 0) {
    TGestEltIndex::TRechSimple rs;
    rs.Nom = nom;
    rs.Prenoms = prenoms;
    rs.Limite = limite;
    std::vector<long> r;
    table.RechercheSimple(rs, nullptr, &r);
    return r;
  };
  EXPECT_EQ(cherche("DUPONT", ""), (std::vector<long>{grand, 7}));
  EXPECT_EQ(cherche("DUPONT", ""), (std::vector<long>{grand, 7}));  // rien de la fois d'avant
  // Deux couples : la personne 7 vient par sa ligne BERNARD, la première de la table.
  EXPECT_EQ(cherche("DUPONT;BERNARD", ""), (std::vector<long>{7, grand}));
  EXPECT_EQ(cherche("", "JEAN PAUL"), (std::vector<long>{7, grand, 3}));
  EXPECT_EQ(cherche("", "JEAN PAUL", 2), (std::vector<long>{7, grand}));
  EXPECT_EQ(cherche("*", "", 1), std::vector<long>{7});
  EXPECT_TRUE(cherche("DURAND", "").empty());
}

// Des personnes enregistrées dans un dossier, indexées, puis cherchées.
class RechercheTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true);
    ASSERT_FALSE(Gest->EnErreur());
    Index = Gest->FicIndexPerson();
    ASSERT_NE(Index, nullptr);
    Fic = Gest->FicPersons();
  }
  long Ajoute(const std::string& nom, const std::string& prenoms, char sexe = 'M', long pere = 0, long mere = 0) {
    TPerson p(Fic);
    p.NouvelleFiche(-3);
    p.SetNom(nom);
    p.SetPrenoms(prenoms);
    p.SetSexe(sexe);
    p.Enreg.Pere = TLienPers(pere);
    p.Enreg.Mere = TLienPers(mere);
    p.Enregistrement();  // le dossier met l'index à jour
    return p.No();
  }
  void Marie(long a, long b) {
    TPerson pa(Fic, a), pb(Fic, b);
    pa.AjouteConj(b);
    pb.AjouteConj(a);
    pa.Enregistrement();
    pb.Enregistrement();
  }
  std::vector<long> Cherche(const TGestEltIndex::TRechSimple& rs) {
    std::vector<long> r;
    Index->Table().RechercheSimple(rs, nullptr, &r);
    return r;
  }
  std::vector<long> Nom(const std::string& nom, const std::string& prenoms = "", bool soundex = false) {
    TGestEltIndex::TRechSimple rs;
    rs.Nom = nom;
    rs.Prenoms = prenoms;
    rs.SoundexNom = soundex;
    return Cherche(rs);
  }
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicIndexPerson* Index = nullptr;
  TFicPersons* Fic = nullptr;
};

TEST_F(RechercheTest, TextePlieParticulesNomsMultiplesEtMasques) {
  const long tour = Ajoute("de la Tour", "Jean");
  const long dupont = Ajoute("Dupont;Durand", "Jean Paul");
  const long dupuis = Ajoute("Dupuis", "Éloïse", 'F');
  const long sansNom = Ajoute("", "Marie", 'F');
  const long sansPrenom = Ajoute("Roy", "");

  // Accents, casse et particules du critère ne changent rien.
  EXPECT_EQ(Nom("de la Tour"), std::vector<long>{tour});
  EXPECT_EQ(Nom("TOUR"), std::vector<long>{tour});
  EXPECT_EQ(Nom("tôur"), std::vector<long>{tour});
  // Deux noms, trouvé par les deux : une seule fois.
  EXPECT_EQ(Nom("Dupont;Durand"), std::vector<long>{dupont});
  EXPECT_EQ(Nom("Durand"), std::vector<long>{dupont});
  // Plusieurs prénoms : chaque couple compte, dans l'ordre de la table.
  EXPECT_EQ(Nom("", "Paul Jean"), (std::vector<long>{dupont, tour}));
  EXPECT_EQ(Nom("Dupont", "eloise paul"), std::vector<long>{dupont});
  EXPECT_EQ(Nom("", "eloise"), std::vector<long>{dupuis});
  // Masques.
  EXPECT_EQ(Nom("DUP*"), (std::vector<long>{dupont, dupuis}));
  EXPECT_EQ(Nom("*UIS"), std::vector<long>{dupuis});
  EXPECT_EQ(Nom("D*R*"), std::vector<long>{dupont});
  EXPECT_EQ(Nom("*").size(), 5u);  // tout le monde
  EXPECT_EQ(Nom("***").size(), 5u);
  EXPECT_EQ(Nom("***", "", true).size(), 5u);
  EXPECT_TRUE(Nom("DUPONTS").empty());
  // Valeurs spéciales.
  EXPECT_EQ(Nom("ZPASZDEZNOM", "Marie"), std::vector<long>{sansNom});
  EXPECT_EQ(Nom("Roy", "ZPASZDEZPRENOM"), std::vector<long>{sansPrenom});
  // Soundex : DUPOND (D153) rattrape DUPONT, pas sans soundex.
  EXPECT_TRUE(Nom("Dupond").empty());
  EXPECT_EQ(Nom("Dupond", "", true), std::vector<long>{dupont});
  // La liste des soundex, faite à la première recherche au son, suit les modifications.
  const long dupond = Ajoute("Dupond", "Luc");
  EXPECT_EQ(Nom("Dupond", "", true), (std::vector<long>{dupond, dupont}));
  TPerson renomme(Fic, dupond);
  renomme.SetNom("Tupont");
  renomme.Enregistrement();
  Index->ModifClef(&renomme, true);
  EXPECT_EQ(Nom("Dupond", "", true), std::vector<long>{dupont});
  EXPECT_EQ(Nom("Tupond", "", true), std::vector<long>{dupond});
  TGestEltIndex::TRechSimple rs;
  rs.Prenoms = "Pol";
  rs.SoundexPrenom = true;
  EXPECT_EQ(Cherche(rs), std::vector<long>{dupont});
  // Limite, et les noms rendus avec les numéros.
  rs.RazTotal();
  rs.Nom = "DUP*";
  rs.Limite = 1;
  std::vector<std::string> noms;
  std::vector<long> numeros;
  EXPECT_EQ(Index->Table().RechercheSimple(rs, &noms, &numeros), 1);
  EXPECT_EQ(noms, std::vector<std::string>{"Dupont;Durand Jean Paul"});
}

TEST_F(RechercheTest, SexeTypePeriodeEtPersonnesSupprimees) {
  Index->Fourchette = [](TPerson& p, float& mn, float& mx) {
    if (p.Enreg.Prenoms[0] == 'A') return false;
    mn = p.Enreg.Prenoms[0] == 'B' ? 1800 : 1900;
    mx = mn + 50;
    return true;
  };
  const long anne = Ajoute("Roy", "Anne", 'F');
  const long bob = Ajoute("Roy", "Bob", 'M');
  const long cid = Ajoute("Roy", "Cid", ' ');
  TGestEltIndex::TRechSimple rs;
  rs.Nom = "Roy";
  rs.Sexe = 'F';
  EXPECT_EQ(Cherche(rs), std::vector<long>{anne});
  rs.Sexe = ' ';
  EXPECT_EQ(Cherche(rs), std::vector<long>{cid});
  rs.Sexe = '?';
  rs.Hommes = true;
  EXPECT_EQ(Cherche(rs), std::vector<long>{bob});
  rs.Hommes = false;
  rs.AvecPeriode = true;
  rs.AnneeDebut = 1840;
  rs.AnneeFin = 1860;
  EXPECT_EQ(Cherche(rs), std::vector<long>{bob});  // Anne, sans années, ne se place nulle part
  rs.AnneeDebut = 1700;
  rs.AnneeFin = 2000;
  EXPECT_EQ(Cherche(rs), (std::vector<long>{bob, cid}));
  rs.AvecPeriode = false;
  rs.Personnes = false;  // ni personne ni témoin : 'P' ne répond plus
  rs.Temoins = false;
  EXPECT_TRUE(Cherche(rs).empty());
  // Une personne supprimée sur le disque, dont la ligne serait restée : jamais listée.
  TEnregPersonne e;
  Fic->LitEnreg(bob, e);
  e.Supprime = 'O';
  Fic->EcritEnreg(bob, e);
  rs.RazTotal();
  rs.Nom = "Roy";
  EXPECT_EQ(Cherche(rs), (std::vector<long>{anne, cid}));
}

TEST_F(RechercheTest, ConjointsParentsEtExclusions) {
  const long pere = Ajoute("Martin", "Louis");
  const long mere = Ajoute("Durand", "Rose", 'F');
  Marie(pere, mere);
  const long fils = Ajoute("Martin", "Paul", 'M', pere, mere);
  const long petit = Ajoute("Martin", "Jules", 'M', fils, 0);
  const long autre = Ajoute("Martin", "Henri");

  TGestEltIndex::TRechSimple rs;
  rs.Nom = "Martin";
  rs.NomConjoint = "Durand";
  EXPECT_EQ(Cherche(rs), std::vector<long>{pere});
  rs.NomConjoint = "Durant";
  EXPECT_TRUE(Cherche(rs).empty());
  rs.SoundexConjoint = true;
  EXPECT_EQ(Cherche(rs), std::vector<long>{pere});
  rs.RazTotal();
  rs.Nom = "Martin";
  rs.Parents = "ZPASZDEZPERE";
  EXPECT_EQ(Cherche(rs), (std::vector<long>{autre, pere}));  // ordre de la table : HENRI, LOUIS
  rs.Parents = "ZPASZDEZMERE";
  EXPECT_EQ(Cherche(rs), (std::vector<long>{autre, petit, pere}));
  rs.Parents.clear();

  // Exclusions : des numéros ; les enfants d'un père ; une lignée remontée par les pères.
  rs.Exclus = {autre};
  EXPECT_EQ(Cherche(rs), (std::vector<long>{petit, pere, fils}));
  rs.RazExclu();
  rs.ExcluPere = pere;
  EXPECT_EQ(Cherche(rs), (std::vector<long>{autre, petit, pere}));
  rs.RazExclu();
  rs.NoExclu = pere;
  rs.ExcluParPere = true;
  rs.Profondeur = 0;  // les parents seuls : Paul part avec son père, Jules reste
  EXPECT_EQ(Cherche(rs), (std::vector<long>{autre, petit}));
  rs.Profondeur = 1;  // les grands-parents aussi : Jules part
  EXPECT_EQ(Cherche(rs), std::vector<long>{autre});

  // Un cycle de parents (fichier abîmé) : la remontée se termine.
  TEnregPersonne e;
  Fic->LitEnreg(pere, e);
  e.Pere = TLienPers(petit);
  Fic->EcritEnreg(pere, e);
  rs.RazExclu();
  rs.NoExclu = 999999;
  rs.ExcluParPere = true;
  rs.Profondeur = 1000;
  EXPECT_EQ(Cherche(rs).size(), 4u);
}

TEST_F(RechercheTest, AbandonEtListesDeValeurs) {
  for (const char* n : {"Zola", "Abel", "Abel", "Martin"}) Ajoute(n, "Jean Émile");
  Ajoute("Abel", "Luc");
  TGestEltIndex& t = Index->Table();
  TGestEltIndex::TRechSimple rs;
  rs.Nom = "*";
  t.SetAbandon(true);
  EXPECT_TRUE(Cherche(rs).empty());  // arrêtée avant la première ligne : rien
  t.SetAbandon(false);
  EXPECT_EQ(Cherche(rs).size(), 5u);

  // Abandon à mi-course : la barre de progression le demande après le premier couple de
  // critères ; la recherche rend ce qu'elle a trouvé jusque-là.
  struct TArret : TProgression {
    TGestEltIndex* Table = nullptr;
    void Position(long p) override {
      TProgression::Position(p);
      if (p >= 1) Table->SetAbandon(true);
    }
  } arret;
  arret.Table = &t;
  rs.Nom = "Zola;Abel";
  std::vector<long> moitie;
  t.RechercheSimple(rs, nullptr, &moitie, &arret);
  EXPECT_EQ(moitie, std::vector<long>{2});  // Zola seul
  EXPECT_EQ(arret.Max, 2);
  t.SetAbandon(false);
  rs.Nom = "*";

  std::vector<std::string> liste;
  t.RetournePatronyme(liste);
  EXPECT_EQ(liste, (std::vector<std::string>{"ABEL", "MARTIN", "ZOLA"}));
  t.RetournePatronyme(liste, "MA");
  EXPECT_EQ(liste, std::vector<std::string>{"MARTIN"});
  t.RetournePrenoms("ABEL", liste);
  EXPECT_EQ(liste, (std::vector<std::string>{"EMILE", "JEAN", "LUC"}));
  t.RetourneToutPrenom(liste);
  EXPECT_EQ(liste, (std::vector<std::string>{"EMILE", "JEAN", "LUC"}));
  std::map<std::string, long> compte;
  t.RetourneListPatronyme(compte);
  EXPECT_EQ(compte, (std::map<std::string, long>{{"ABEL", 3}, {"MARTIN", 1}, {"ZOLA", 1}}));
  t.RetourneListPrenom(compte);
  EXPECT_EQ(compte, (std::map<std::string, long>{{"EMILE", 4}, {"JEAN", 4}, {"LUC", 1}}));
  std::vector<long> rangs;
  t.ChercheClefPersNo(3, rangs);
  EXPECT_EQ(rangs.size(), 2u);

  // Une table vide ne trouve rien et vide la liste.
  TGestEltIndex vide;
  std::vector<long> r{42};
  EXPECT_EQ(vide.RechercheSimple(rs, nullptr, &r), 0);
  EXPECT_TRUE(r.empty());
}

TEST(CompareNomPrenoms, ElementsDeLaFicheContreLeCritere) {
  EXPECT_TRUE(TGestEltIndex::CompareNom("de la Tour;Dupont", "TOUR", false));
  EXPECT_TRUE(TGestEltIndex::CompareNom("de la Tour;Dupont", "DUP*", false));
  EXPECT_FALSE(TGestEltIndex::CompareNom("Dupont", "DUPOND", false));
  EXPECT_TRUE(TGestEltIndex::CompareNom("Dupont", "DUPOND", true));
  EXPECT_TRUE(TGestEltIndex::CompareNom("", "ZPASZDEZNOMZ", false));
  EXPECT_TRUE(TGestEltIndex::CompareNom("  ", "ZPASZDEZNOM", false));
  EXPECT_FALSE(TGestEltIndex::CompareNom("Roy", "ZPASZDEZNOM", false));
  EXPECT_TRUE(TGestEltIndex::ComparePrenoms("Jean Éloïse", "ELOISE", false));
  EXPECT_TRUE(TGestEltIndex::IsPrenomsCorrespond("Jean Paul", "paul"));
  EXPECT_FALSE(TGestEltIndex::IsPrenomsCorrespond("Jean Paul", "Pierre"));
}

// Les listes de valeurs tirées des faits : noms d'un lieu, lieux servis, professions ; les
// faits d'une personne supprimée n'y comptent plus.
TEST_F(RechercheTest, ListesDeValeursDesFaits) {
  const long martin = Ajoute("Martin", "Jean"), durand = Ajoute("Durand", "Anne", 'F'), roy = Ajoute("Roy", "Paul");
  TEltDupChn lyonElt(0, "Lyon", "69", "", "France"), vienneElt(0, "Vienne", "38", "", "France");
  const long lyon = Gest->FicLie()->Cherche(&lyonElt, true);
  Gest->FicLie()->Cherche(&vienneElt, true);  // un lieu qu'aucun fait ne désigne
  auto fait = [&](long no, const char* libelle, long lieu, const char* donnee) {
    ASSERT_NE(essai::AjouteFait(Fic, Gest->ModuleBDD(), no, {.Libelle = libelle, .Donnee = donnee, .Lieu = lieu}), 0);
  };
  fait(martin, "NAISSANCE", lyon, "");
  fait(durand, "DECES", lyon, "");
  fait(martin, "PROFESSION", 0, "tisserand");
  fait(roy, "PROFESSION", 0, "meunier");
  fait(roy, "NAISSANCE", lyon, "");
  TPerson(Fic, roy).Suppression(false);
  std::vector<std::string> l;
  Index->Table().RetournePatronymeLieu(lyon, l);
  EXPECT_EQ(l, (std::vector<std::string>{"DURAND", "MARTIN"}));
  Index->Table().RetourneLieux(l);
  EXPECT_EQ(l, std::vector<std::string>{"Lyon"});
  Index->Table().RetourneProfession(l);
  EXPECT_EQ(l, std::vector<std::string>{"tisserand"});
  Index->Table().RetournePatronymeLieu(0, l);
  EXPECT_TRUE(l.empty());
}

// Les variantes de la recherche : équivalences de noms, lignes de liste, arbre affiché.
TEST_F(RechercheTest, EquivalencesLignesDeListeEtArbreAffiche) {
  Index->Fourchette = [](TPerson& p, float& mn, float& mx) {
    mn = p.Enreg.Prenoms[0] == 'J' ? 1820 : 1900;
    mx = mn + 60;
    return true;
  };
  const long dupont = Ajoute("Dupont", "Jean");
  const long dupond = Ajoute("Dupond", "Jehan");
  const long martin = Ajoute("Martin", "Jean", 'F');
  essai::Ecrit(Temp.Dossier() + "/Essai.neq", "# graphies\r\nDupont;Dupond;\r\nseul\r\n");
  essai::Ecrit(Temp.Dossier() + "/Essai.preq", "Jean;Jehan\n");
  Gest.reset();
  Gest = std::make_unique<TGestFichier>(Temp.Prs(), false);
  Index = Gest->FicIndexPerson();
  Fic = Gest->FicPersons();
  ASSERT_NE(Gest->TabNomEquiv(), nullptr);
  EXPECT_EQ(Gest->TabNomEquiv()->Avertissements.size(), 1u);  // "seul" : une graphie

  TGestEltIndex::TRechSimple rs;
  rs.Nom = "Dupont";
  EXPECT_EQ(Cherche(rs), std::vector<long>{dupont});
  rs.Equivalences = true;
  EXPECT_EQ(Cherche(rs), (std::vector<long>{dupond, dupont}));
  rs.Nom = "";
  rs.Prenoms = "Jehan";
  EXPECT_EQ(Cherche(rs), (std::vector<long>{dupond, dupont, martin}));
  rs.Prenoms = "Je*";  // un masque n'a pas d'équivalents
  rs.Nom = "Martin";
  EXPECT_EQ(Cherche(rs), std::vector<long>{martin});

  // Lignes de liste : la fiche pour le nom et le sexe, l'index pour les années.
  std::vector<TGestEltIndex::TLigneResultat> lignes;
  rs.RazTotal();
  rs.Nom = "DUPON*";
  ASSERT_EQ(Index->Table().RechercheSimpleLV(rs, lignes), 2);
  EXPECT_EQ(lignes[0].Numero, dupond);
  EXPECT_EQ(lignes[0].Nom, "Dupond");
  EXPECT_EQ(lignes[0].Prenoms, "Jehan");
  EXPECT_EQ(lignes[0].Sexe, 'M');
  EXPECT_EQ(lignes[0].AnneeMin, 1820);
  EXPECT_EQ(lignes[0].AnneeMax, 1880);
  EXPECT_EQ(lignes[1].Numero, dupont);
  // Arbre affiché : seules ses personnes répondent, et la limite ne compte qu'elles.
  rs.Nom = "";
  rs.Limite = 1;
  ASSERT_EQ(Index->Table().RechercheSimpleLVArbAff(rs, {martin, dupont}, lignes), 1);
  EXPECT_EQ(lignes[0].Numero, dupont);
  EXPECT_EQ(lignes[0].Sexe, 'M');
  rs.Limite = 0;
  Index->Table().RechercheSimpleLVArbAff(rs, {martin}, lignes);
  ASSERT_EQ(lignes.size(), 1u);
  EXPECT_EQ(lignes[0].Sexe, 'F');
  EXPECT_EQ(lignes[0].AnneeMin, 1820);
  EXPECT_EQ(Index->Table().RechercheSimpleLVArbAff(rs, {}, lignes), 0);
}

// Les lignes d'une personne retrouvées par le classement par personne, qui suit la table.
TEST_F(RechercheTest, LignesDUnePersonneParSonNumero) {
  const long a = Ajoute("Martin;Durand", "Jean Paul");
  const long b = Ajoute("Roy", "Luc");
  TGestEltIndex& t = Index->Table();
  t.InitClefIndexOfNoPers();
  for (long no : {a, b}) {
    std::vector<long> rangs;
    t.ChercheClefPersNo(no, rangs);
    ASSERT_FALSE(rangs.empty());
    EXPECT_EQ(t.FindClefIndexOfNoPers(no), rangs.front()) << no;
    std::vector<long> rangs2;
    t.ChercheClefPersNo2(no, rangs2);
    EXPECT_EQ(rangs2, rangs) << no;
  }
  EXPECT_EQ(t.FindClefIndexOfNoPers(999), -1);
  EXPECT_EQ(t.FindClefIndexOfNoPers(0), -1);
  // Un changement de la table : le classement est refait sans qu'on le demande.
  const long c = Ajoute("Aaron", "Abel");
  EXPECT_EQ(Index->Table().FindClefIndexOfNoPers(c), 0);
  std::vector<long> rangs;
  Index->Table().ChercheClefPersNo(b, rangs);
  EXPECT_EQ(Index->Table().FindClefIndexOfNoPers(b), rangs.front());
  TPerson(Fic, c).Suppression(false);
  EXPECT_EQ(Index->Table().FindClefIndexOfNoPers(c), -1);
}

// Le critère de fait : libellé (masque), donnée pliée, années de la date ; un champ simple
// répond sans période.
TEST_F(RechercheTest, CritereDeFaitSurEvenementsEtChampsSimples) {
  const long jean = Ajoute("Martin", "Jean"), paul = Ajoute("Martin", "Paul"), luc = Ajoute("Martin", "Luc");
  auto fait = [&](long no, const char* libelle, const char* date, const char* donnee) {
    ASSERT_NE(essai::AjouteFait(Fic, Gest->ModuleBDD(), no, {.Libelle = libelle, .Date = date, .Donnee = donnee}), 0);
  };
  fait(jean, "NAISSANCE", "12/05/1850", "");
  fait(paul, "NAISSANCE", "1870/1880", "");
  fait(paul, "PROFESSION", "", "Tisserand à façon");
  TGestEltIndex::TRechSimple rs;
  rs.Nom = "Martin";
  rs.Evenement = "naissance";
  EXPECT_EQ(Cherche(rs), (std::vector<long>{jean, paul}));
  rs.EvenAnneeDebut = 1860;
  EXPECT_EQ(Cherche(rs), std::vector<long>{paul});
  rs.EvenAnneeFin = 1872;
  EXPECT_EQ(Cherche(rs), std::vector<long>{paul});  // la fourchette touche la période
  rs.EvenAnneeDebut = 1881;
  rs.EvenAnneeFin = 0;
  EXPECT_TRUE(Cherche(rs).empty());
  rs.EvenAnneeDebut = 0;
  rs.Evenement = "PROF*";
  rs.DonneeEvenement = "tisserand*";
  EXPECT_EQ(Cherche(rs), std::vector<long>{paul});
  rs.DonneeEvenement = "meunier";
  EXPECT_TRUE(Cherche(rs).empty());
  (void)luc;

  TChpsSimple::TEnreg chp;
  chp.Libelle = "RELIGION";
  chp.Donnee = "Catholique";
  EXPECT_TRUE(TGestEltIndex::CompareChps(chp, "religion", "CATHO*"));
  EXPECT_FALSE(TGestEltIndex::CompareChps(chp, "NAISSANCE", ""));
  TEvenement::TEnreg sansDate;
  sansDate.SetLibelle("DECES");
  EXPECT_TRUE(TGestEltIndex::CompareEvent(sansDate, "DECES", "", 0, 0));
  EXPECT_FALSE(TGestEltIndex::CompareEvent(sansDate, "DECES", "", 1800, 1900));  // sans année
}

// Un critère tapé prend la forme même des lignes : un nom long avec un signe ou un blanc avant
// la coupe à 20 se retrouve par son orthographe, un critère qui ne garde rien (particules,
// signes) cherche le nom vide, et le nom d'un conjoint se juge sur ses lignes d'index.
TEST_F(RechercheTest, CriteresALaFormeDesLignes) {
  const long longNom = Ajoute("Abcdefghijklmnopqrs Tuv", "Jean");
  const long ditNom = Ajoute("Jean-Pierre (dit Le Grand) Martin", "Luc");
  const long particule = Ajoute("de", "Marie", 'F');
  const long femme = Ajoute("Martin (dit Dupont)", "Anne", 'F');
  const long mari = Ajoute("Roy", "Paul");
  Marie(femme, mari);
  EXPECT_EQ(Nom("Abcdefghijklmnopqrs Tuv"), std::vector<long>{longNom});
  EXPECT_EQ(Nom("Jean-Pierre (dit Le Grand) Martin"), std::vector<long>{ditNom});
  EXPECT_EQ(Nom("de"), std::vector<long>{particule});
  EXPECT_EQ(Nom("()"), std::vector<long>{particule});
  EXPECT_EQ(Nom("de la", "Marie"), std::vector<long>{particule});
  EXPECT_TRUE(Nom("de", "Jean").empty());
  // Un prénom à particules se range et se cherche sous la même forme.
  const long dieu = Ajoute("Durand", "Jean-de-Dieu");
  EXPECT_EQ(Nom("", "Jean-de-Dieu"), std::vector<long>{dieu});
  EXPECT_EQ(Nom("", "jean-dieu"), std::vector<long>{dieu});
  TGestEltIndex::TRechSimple rs;
  rs.NomConjoint = "Martin (dit Dupont)";
  EXPECT_EQ(Cherche(rs), std::vector<long>{mari});
  rs.NomConjoint = "Martin (dit Dupond)";
  EXPECT_TRUE(Cherche(rs).empty());
  rs.SoundexConjoint = true;
  EXPECT_EQ(Cherche(rs), std::vector<long>{mari});
  rs.SoundexConjoint = false;
  rs.NomConjoint = "MART*";
  rs.PrenomsConjoint = "anne";
  EXPECT_EQ(Cherche(rs), std::vector<long>{mari});
  rs.PrenomsConjoint = "Paul";
  EXPECT_TRUE(Cherche(rs).empty());
}

}  // namespace
}  // namespace rqbase
