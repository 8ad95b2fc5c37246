// L'estimation des dates de vie : réglages et fenêtres typiques, arithmétique des intervalles,
// puis chaque passe dans un vrai dossier (naissance et décès notés, faits, inhumation, unions,
// citations, enfants, parents, frères et soeurs selon le rang), incohérences, cache des
// estimations, présumée vivante, et les données hostiles (cycle de parents, dates absurdes,
// 150 enfants).
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <random>
#include <vector>

#include "personne_essai.h"
#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/estimation_personne.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liaisons.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

constexpr float kInc = 1000000.0f;
// Valeur du 1er janvier d'une année : un jour de 1/365,242 d'année.
constexpr float kJ1 = 1.0f / 365.242f;
constexpr float kTol = 0.01f;

#define EXPECT_BORNES(i, inf, sup)     \
  do {                                 \
    EXPECT_FALSE((i).InfOuvert);       \
    EXPECT_FALSE((i).SupOuvert);       \
    EXPECT_NEAR((i).Inf, (inf), kTol); \
    EXPECT_NEAR((i).Sup, (sup), kTol); \
  } while (0)

#define EXPECT_OUVERT(i)        \
  do {                          \
    EXPECT_TRUE((i).InfOuvert); \
    EXPECT_TRUE((i).SupOuvert); \
  } while (0)

TEST(ReglagesEstimation, FenetresParDefautEtTypiques) {
  const TConsConfigSais c;
  int mini = 0, maxi = 0;
  c.GetAgeUnion(mini, maxi, true, true);
  EXPECT_EQ(mini, 17);
  EXPECT_EQ(maxi, 70);
  c.GetAgeUnion(mini, maxi, false, true);  // 1,5 × 17 = 25,5, moins et plus 5, tronqués
  EXPECT_EQ(mini, 20);
  EXPECT_EQ(maxi, 30);
  c.GetAgeUnion(mini, maxi, false, false);  // 1,4 × 17 = 23,8
  EXPECT_EQ(mini, 18);
  EXPECT_EQ(maxi, 28);
  c.GetAgePremierEnfant(mini, maxi, true, true);
  EXPECT_EQ(mini, 18);
  EXPECT_EQ(maxi, 50);
  c.GetAgePremierEnfant(mini, maxi, true, false);
  EXPECT_EQ(mini, 15);
  EXPECT_EQ(maxi, 50);
  c.GetAgePremierEnfant(mini, maxi, false, true);  // 18 × 1,7 - 5 = 25,6 ; 50 × 1,7 + 5 = 90
  EXPECT_EQ(mini, 25);
  EXPECT_EQ(maxi, 90);
  c.GetAgePremierEnfant(mini, maxi, false, false);  // 15 × 1,7 - 5 = 20,5
  EXPECT_EQ(mini, 20);
  EXPECT_EQ(maxi, 90);
  EXPECT_EQ(c.AgeDecesMoyen(), 58);
}

TEST(IntervallesEstimation, IntersectionSansEchecEtDecalages) {
  // Disjoints dans un sens ou dans l'autre : aucune information, jamais d'erreur.
  EXPECT_OUVERT(Intersection(IntervalFerme(1800, 1850), IntervalFerme(1860, 1900)));
  EXPECT_OUVERT(Intersection(IntervalFerme(1860, 1900), IntervalFerme(1800, 1850)));
  TInterval<float> basOuvert;
  basOuvert.SetSup(1850);
  TInterval<float> hautOuvert;
  hautOuvert.SetInf(1860);
  EXPECT_OUVERT(Intersection(basOuvert, hautOuvert));
  EXPECT_BORNES(Intersection(IntervalFerme(1800, 1870), IntervalFerme(1850, 1900)), 1850, 1870);
  EXPECT_BORNES(Intersection(IntervalOuvert(), IntervalFerme(1850, 1900)), 1850, 1900);
  EXPECT_BORNES(Intersection(basOuvert, IntervalFerme(1800, 1900)), 1800, 1850);
  const TInterval<float> demi = Intersection(basOuvert, TInterval<float>());
  EXPECT_TRUE(demi.InfOuvert);
  EXPECT_NEAR(demi.Sup, 1850, kTol);

  const TConsConfigSais c;
  // Un enfant de 1880 : le père est né entre 1830 et 1862, la mère entre 1830 et 1865.
  EXPECT_BORNES(CreeIntervalEnfant(true, &c, IntervalFerme(1880, 1880), true), 1830, 1862);
  EXPECT_BORNES(CreeIntervalEnfant(false, &c, IntervalFerme(1880, 1880), true), 1830, 1865);
  EXPECT_BORNES(CreeIntervalEnfant(true, &c, IntervalFerme(1880, 1880), false), 1790, 1855);
  EXPECT_BORNES(CreeIntervalUnion(true, &c, IntervalFerme(1850, 1850), true), 1780, 1833);
  EXPECT_BORNES(CreeIntervalUnion(false, &c, IntervalFerme(1850, 1850), false), 1822, 1832);
  EXPECT_BORNES(CreeIntervalParent(true, &c, IntervalFerme(1800, 1800), true), 1818, 1850);
  EXPECT_BORNES(CreeIntervalFrere(&c, IntervalFerme(1850, 1850), true), 1815, 1885);
  EXPECT_BORNES(CreeIntervalConjoint(&c, IntervalFerme(1850, 1851)), 1830, 1871);
  // Une borne ouverte le reste.
  const TInterval<float> f = CreeIntervalFrere(&c, basOuvert, true);
  EXPECT_TRUE(f.InfOuvert);
  EXPECT_NEAR(f.Sup, 1885, kTol);
}

class EstimationTest : public testing::Test {
 protected:
  void SetUp() override {
    InstalleDialogue(&Dlg);
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(Gest->EnErreur());
    Fic = Gest->FicPersons();
  }
  void TearDown() override { InstalleDialogue(nullptr); }

  long Ajoute(const char* nom, char sexe = 'M') { return essai::AjoutePersonne(Fic, nom, sexe); }
  // Un événement avecDate ; `acte` "<", ">", "ca"... ; `conjoint` en fait un événement de couple.
  long Even(long no, const char* libelle, const char* date, long conjoint = 0, const char* acte = "") {
    const long n = essai::AjouteFait(Fic, Gest->ModuleBDD(), no,
                                     {.Libelle = libelle, .Date = date, .Conjoint = conjoint, .Acte = acte});
    EXPECT_NE(n, 0);
    return n;
  }
  void Parent(long parent, long enfant, bool pere = true) { ASSERT_TRUE(LieParent(*Fic, parent, enfant, pere)); }
  TEstimationPersonne Estime(long no, bool utilisateur = false, bool avecMoyen = false,
                             TEstimationCalculee* cache = nullptr) {
    TEstimationPersonne e(cache);
    e.AvecMoyen = avecMoyen;
    e.EstimePersonne(no, Fic, false, utilisateur);
    return e;
  }
  // Aucun intervalle renversé, aucune borne qui ne soit un nombre.
  static void VerifieSain(const TEstimationPersonne& e) {
    for (const TInterval<float>* i : {&e.IntervalNaissance, &e.IntervalDeces, &e.IntervalUnion, &e.IntervalProcreation,
                                      &e.IntervalNaissanceMoyen, &e.IntervalDecesMoyen}) {
      EXPECT_FALSE(EstRenverse(*i));
      EXPECT_TRUE(i->InfOuvert || std::isfinite(i->Inf));
      EXPECT_TRUE(i->SupOuvert || std::isfinite(i->Sup));
    }
  }

  TDialogueFixe Dlg;
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicPersons* Fic = nullptr;
};

TEST_F(EstimationTest, RienDeConnuToutResteOuvert) {
  const long seul = Ajoute("SEUL");
  for (const long no : {seul, 0L, 9999L, -5L}) {
    const TEstimationPersonne e = Estime(no);
    EXPECT_OUVERT(e.IntervalNaissance);
    EXPECT_OUVERT(e.IntervalDeces);
    EXPECT_OUVERT(e.IntervalUnion);
    EXPECT_OUVERT(e.IntervalProcreation);
    EXPECT_EQ(e.AnneeNaissance, kInc);
    EXPECT_EQ(e.AnneeDeces, kInc);
    EXPECT_EQ(e.AnneeUnion, kInc);
  }
  TEstimationPersonne e;
  float n = 0, d = 0;
  TPerson p(Fic, seul);
  e.RecupAnneeNaissanceDeces(&p, n, d);
  EXPECT_EQ(n, kInc);
  EXPECT_EQ(d, kInc);
  EXPECT_FALSE(FourchetteDeVie(p, n, d));
  EXPECT_EQ(n, kInc);
  EXPECT_EQ(d, kInc);
}

TEST_F(EstimationTest, DecesSeulEnMilNeufCentEtFormeMoyenne) {
  const long p = Ajoute("MORT");
  Even(p, "DECES", "../../1900");  // une année seule n'est pas exacte : [1900 + 1 jour, fin 1900]
  const float fin1900 = 1900 + 11.0f / 12 + 31 * kJ1;
  const TEstimationPersonne e = Estime(p, false, true);
  EXPECT_EQ(e.AnneeDeces, kInc);
  EXPECT_BORNES(e.IntervalDeces, 1900 + kJ1, fin1900);
  EXPECT_BORNES(e.IntervalNaissance, 1800 + kJ1, fin1900);
  EXPECT_BORNES(e.IntervalNaissanceMoyen, 1842 + kJ1, fin1900);
  float n = 0, d = 0;
  TEstimationPersonne r;
  TPerson pers(Fic, p);
  r.RecupAnneeNaissanceDeces(&pers, n, d);
  EXPECT_NEAR(n, (1800 + kJ1 + fin1900) / 2, kTol);
  EXPECT_NEAR(d, (1900 + kJ1 + fin1900) / 2, kTol);
  // Pour l'index des noms : de la naissance au plus tôt au décès au plus tard.
  float min = 0, max = 0;
  EXPECT_TRUE(FourchetteDeVie(pers, min, max));
  EXPECT_NEAR(min, 1800 + kJ1, kTol);
  EXPECT_NEAR(max, fin1900, kTol);
}

TEST_F(EstimationTest, NaissanceExacteDonneDecesUnionEtProcreation) {
  const long h = Ajoute("LUI", 'M'), f = Ajoute("ELLE", 'F');
  Even(h, "NAISSANCE", "15/06/1850");
  Even(f, "NAISSANCE", "15/06/1850");
  const float b = 1850 + 5.0f / 12 + 15 * kJ1;
  const TEstimationPersonne e = Estime(h);
  EXPECT_NEAR(e.AnneeNaissance, b, kTol);
  EXPECT_BORNES(e.IntervalNaissance, b, b);
  EXPECT_BORNES(e.IntervalDeces, b, b + 100);
  EXPECT_BORNES(e.IntervalUnion, b + 17, b + 70);
  // Un homme peut être père jusqu'à 270 jours après sa mort, une femme 2 jours après.
  EXPECT_BORNES(e.IntervalProcreation, b + 18, b + 50 + 270.0f / 365);
  const TEstimationPersonne ef = Estime(f);
  EXPECT_BORNES(ef.IntervalProcreation, b + 15, b + 50 + 0.00548f);
  EXPECT_FALSE(e.DateNaissance.DateVide());
}

TEST_F(EstimationTest, FaitsDeLaPersonne) {
  // Deux faits à 120 ans l'un de l'autre : r = 0, la vie tient juste entre eux.
  const long a = Ajoute("A");
  Even(a, "RESIDENCE", "01/01/1800");
  Even(a, "PROFESSION", "01/01/1850");
  Even(a, "RESIDENCE", "01/01/1920");
  const TEstimationPersonne ea = Estime(a);
  EXPECT_BORNES(ea.IntervalNaissance, 1800 + kJ1, 1800 + kJ1);
  EXPECT_BORNES(ea.IntervalDeces, 1920 + kJ1, 1920 + kJ1);
  EXPECT_BORNES(ea.IntervalFaits, 1800 + kJ1, 1920 + kJ1);
  EXPECT_EQ(ea.AnneeNaissance, kInc);  // une borne, pas une année notée

  // Un fait seul : cent ans de part et d'autre ; 58 ans pour la forme moyenne.
  const long b = Ajoute("B");
  Even(b, "RESIDENCE", "01/01/1850");
  const TEstimationPersonne eb = Estime(b, false, true);
  EXPECT_BORNES(eb.IntervalNaissance, 1750 + kJ1, 1850 + kJ1);
  EXPECT_BORNES(eb.IntervalDeces, 1850 + kJ1, 1950 + kJ1);
  EXPECT_BORNES(eb.IntervalNaissanceMoyen, 1792 + kJ1, 1850 + kJ1);
  EXPECT_BORNES(eb.IntervalDecesMoyen, 1850 + kJ1, 1908 + kJ1);

  // Une inhumation borne le décès par le haut ; un fait « avant 1870 » borne la naissance,
  // sans rien dire du décès.
  const long c = Ajoute("C");
  Even(c, "DECES", "1890/1910");
  Even(c, "INHUMATION", "01/01/1900");
  Even(c, "RESIDENCE", "../../1870", 0, "<");
  const TEstimationPersonne ec = Estime(c);
  EXPECT_BORNES(ec.IntervalDeces, 1890, 1900 + kJ1);
  EXPECT_BORNES(ec.IntervalNaissance, 1790, 1870 + 11.0f / 12 + 31 * kJ1);
}

TEST_F(EstimationTest, UnionEtConjoint) {
  const long h = Ajoute("MARI", 'M'), f = Ajoute("EPOUSE", 'F');
  ASSERT_TRUE(LieConjoints(*Fic, h, f, false));
  Even(h, "UNION", "01/01/1850", f);
  const TEstimationPersonne e = Estime(h);
  EXPECT_BORNES(e.IntervalNaissance, 1780 + kJ1, 1833 + kJ1);
  // Vivant à l'union ; au plus cent ans après la naissance la plus tardive.
  EXPECT_BORNES(e.IntervalDeces, 1850 + kJ1, 1933 + kJ1);
  EXPECT_NEAR(e.AnneeUnion, 1850 + kJ1, kTol);
  EXPECT_BORNES(e.IntervalUnion, 1850 + kJ1, 1850 + kJ1);
  // Une épouse née en 1800 exactement : écart d'au plus 20 ans, en plus de l'union.
  const long g = Ajoute("SECONDE", 'F');
  ASSERT_TRUE(LieConjoints(*Fic, h, g, false));
  Even(g, "NAISSANCE", "01/01/1800");
  const TEstimationPersonne e2 = Estime(h);
  EXPECT_BORNES(e2.IntervalNaissance, 1780 + kJ1, 1820 + kJ1);
}

TEST_F(EstimationTest, CitationsBornentLaVie) {
  const long a = Ajoute("A"), t = Ajoute("TEMOIN"), u = Ajoute("PARRAIN");
  Even(a, "NAISSANCE", "01/01/1820");
  const long avecDate = Even(a, "RESIDENCE", "01/01/1850");
  const long sansDate = Even(a, "BAPTEME", "");
  auto cite = [&](long noEven, long qui) {
    TEvenement e(Gest->ModuleBDD(), noEven);
    e.ChargerTableauxBDD();
    TPersAssociee c;
    c.Lien = TLienPers(qui);
    e.Enreg.AjoutPersAssociee(c);
    Gest->ModuleBDD()->EnregistrementEven(&e);
  };
  cite(avecDate, t);
  cite(sansDate, u);  // sans date : le premier fait daté de la personne principale (1820)
  if (TCachePersonnes* c = Fic->Cache()) c->RazBuffers();
  const TEstimationPersonne et = Estime(t);
  EXPECT_BORNES(et.IntervalFaitsCitations, 1850 + kJ1, 1850 + kJ1);
  EXPECT_BORNES(et.IntervalNaissance, 1750 + kJ1, 1850 + kJ1);
  EXPECT_BORNES(et.IntervalDeces, 1850 + kJ1, 1950 + kJ1);
  const TEstimationPersonne eu = Estime(u);
  EXPECT_BORNES(eu.IntervalNaissance, 1720 + kJ1, 1820 + kJ1);
}

TEST_F(EstimationTest, EnfantsEtParents) {
  const long pere = Ajoute("PERE", 'M'), mere = Ajoute("MERE", 'F'), enfant = Ajoute("ENFANT");
  Parent(pere, enfant, true);
  Parent(mere, enfant, false);
  Even(enfant, "NAISSANCE", "01/01/1880");
  const TEstimationPersonne ep = Estime(pere);
  EXPECT_BORNES(ep.IntervalNaissance, 1830 + kJ1, 1862 + kJ1);
  // Vivant à la naissance de l'enfant, au plus cent ans après sa propre naissance.
  EXPECT_BORNES(ep.IntervalDeces, 1880 + kJ1, 1962 + kJ1);
  EXPECT_BORNES(Estime(mere).IntervalNaissance, 1830 + kJ1, 1865 + kJ1);

  // Un père né le 1er janvier 1800 : l'enfant, sans naissance, entre 1818 et 1850.
  const long fils = Ajoute("FILS"), grandPere = Ajoute("AIEUL", 'M');
  Parent(grandPere, fils, true);
  Even(grandPere, "NAISSANCE", "01/01/1800");
  const TEstimationPersonne ef = Estime(fils);
  EXPECT_BORNES(ef.IntervalNaissance, 1818 + kJ1, 1850 + kJ1);
}

TEST_F(EstimationTest, FreresEtSoeursSelonLeRang) {
  const long pere = Ajoute("PERE", 'M');
  const long aine = Ajoute("AINE"), s1 = Ajoute("S1"), x = Ajoute("X");
  Parent(pere, aine);
  Parent(pere, s1);
  Parent(pere, x);
  Even(s1, "NAISSANCE", "01/01/1850");
  // L'aîné est avant S1 : né au plus tôt 35 ans avant, sans borne haute.
  const TEstimationPersonne ea = Estime(aine);
  EXPECT_NEAR(ea.IntervalNaissance.Inf, 1815 + kJ1, kTol);
  EXPECT_FALSE(ea.IntervalNaissance.InfOuvert);
  EXPECT_TRUE(ea.IntervalNaissance.SupOuvert);
  // X vient après S1 : né au plus tard 35 ans après, sans borne basse.
  const TEstimationPersonne ex = Estime(x);
  EXPECT_TRUE(ex.IntervalNaissance.InfOuvert);
  EXPECT_NEAR(ex.IntervalNaissance.Sup, 1885 + kJ1, kTol);
  // Un demi-frère par la mère, né en 1860, vient après les enfants du père : X est avant lui.
  const long mere = Ajoute("MERE", 'F'), y = Ajoute("Y");
  Parent(mere, x, false);
  Parent(mere, y, false);
  Even(y, "NAISSANCE", "01/01/1860");
  EXPECT_BORNES(Estime(x).IntervalNaissance, 1825 + kJ1, 1885 + kJ1);
}

TEST_F(EstimationTest, IncoherencesDeLUtilisateur) {
  const long p = Ajoute("P");
  Even(p, "NAISSANCE", "01/01/1850");
  Even(p, "DECES", "01/01/1840");
  const TEstimationPersonne brut = Estime(p);
  EXPECT_NEAR(brut.AnneeDeces, 1840 + kJ1, kTol);
  // Un décès avant la naissance est oublié ; le décès vient alors de la naissance.
  const TEstimationPersonne e = Estime(p, true);
  EXPECT_EQ(e.AnneeDeces, kInc);
  EXPECT_NEAR(e.AnneeNaissance, 1850 + kJ1, kTol);
  EXPECT_BORNES(e.IntervalDeces, 1850 + kJ1, 1950 + kJ1);
}

TEST_F(EstimationTest, CacheDesEstimations) {
  const long pere = Ajoute("PERE", 'M'), enfant = Ajoute("ENFANT");
  Parent(pere, enfant);
  Even(enfant, "NAISSANCE", "01/01/1880");
  TEstimationCalculee cache;
  const TEstimationPersonne avec = Estime(pere, false, false, &cache);
  EXPECT_EQ(cache.Portee(pere), 1);
  EXPECT_EQ(cache.Portee(enfant), 0);
  EXPECT_EQ(cache.Portee(12345), -1);
  const TEstimationPersonne sans = Estime(pere);
  EXPECT_BORNES(avec.IntervalNaissance, sans.IntervalNaissance.Inf, sans.IntervalNaissance.Sup);
  // L'enfant estimé en entier remplace son estimation simple, jamais l'inverse.
  Estime(enfant, false, false, &cache);
  EXPECT_EQ(cache.Portee(enfant), 1);
  TEstimationPersonne simple(&cache);
  simple.EstimePersonne(enfant, Fic, true);
  EXPECT_EQ(cache.Portee(enfant), 1);
  ASSERT_NE(cache.Cherche(pere), nullptr);
  EXPECT_EQ(cache.Cherche(pere)->No(), pere);
  EXPECT_EQ(cache.Cherche(pere)->Cache, nullptr);
  EXPECT_EQ(cache.Taille(), 2u);
}

TEST_F(EstimationTest, SansReglagesUneErreurExacte) {
  TConsConfigSais* avant = ConsConfigSais();
  InstalleConsConfigSais(nullptr);
  TEstimationPersonne e;
  try {
    e.EstimePersonne(1, Fic);
    ADD_FAILURE() << "pas d'exception";
  } catch (const ERqBase& err) {
    EXPECT_STREQ(err.what(), "Estimation des dates de vie impossible : aucun réglage de saisie n'est installé.");
  }
  InstalleConsConfigSais(avant);
  // Des réglages à soi : une vie de 80 ans.
  TConsConfigSais courts;
  courts.DureeVie = 80;
  const long p = Ajoute("P");
  Even(p, "NAISSANCE", "01/01/1900");
  TEstimationPersonne e2(nullptr, &courts);
  e2.EstimePersonne(p, Fic);
  EXPECT_BORNES(e2.IntervalDeces, 1900 + kJ1, 1980 + kJ1);
}

TEST_F(EstimationTest, PresumeeVivanteEtMorteAujourdhui) {
  const long ancien = Ajoute("ANCIEN"), jeune = Ajoute("JEUNE"), disparu = Ajoute("DISPARU");
  Even(ancien, "NAISSANCE", "01/01/1800");
  Even(jeune, "NAISSANCE", "01/01/2000");
  Even(disparu, "NAISSANCE", "01/01/2000");
  Even(disparu, "DECES", "");  // un décès noté sans date
  TPerson a(Fic, ancien), j(Fic, jeune), d(Fic, disparu);
  EXPECT_TRUE(a.IsDeadToday());
  EXPECT_FALSE(a.EstPresumeVivante(-1.0f));
  EXPECT_TRUE(a.EstPresumeVivante(1850));
  EXPECT_FALSE(a.EstPresumeVivante(1790));  // pas encore née
  EXPECT_FALSE(a.EstPresumeVivante(1901));  // morte à coup sûr
  EXPECT_FALSE(j.IsDeadToday());
  EXPECT_TRUE(j.EstPresumeVivante(-1.0f));
  EXPECT_TRUE(d.IsDeadToday());
  EXPECT_FALSE(d.EstPresumeVivante(-1.0f));
  EXPECT_TRUE(d.EstPresumeVivante(2010));  // la date du décès n'est pas connue
  const float maintenant = AnneeDecimaleAujourdhui();
  EXPECT_GT(maintenant, 2000);
  EXPECT_LT(maintenant, 3000);
}

TEST_F(EstimationTest, CycleDeParentsEtDatesAbsurdesSeTerminent) {
  // A est le père de B et B celui de A, A est son propre enfant, un enfant est hors du fichier.
  const long a = Ajoute("A"), b = Ajoute("B");
  {
    TPerson pa(Fic, a);
    pa.Enreg.Pere = TLienPers(b);
    pa.Enreg.Enfants[0] = TLienPers(b);
    pa.Enreg.Enfants[1] = TLienPers(a);
    pa.Enreg.Enfants[2] = TLienPers(99999);
    pa.Enreg.Conjoints[0] = TLienConj(a);  // soi-même pour conjoint
    pa.Enregistrement();
    TPerson pb(Fic, b);
    pb.Enreg.Pere = TLienPers(a);
    pb.Enreg.Enfants[0] = TLienPers(a);
    pb.Enregistrement();
  }
  Even(a, "NAISSANCE", "00/00/0000");
  Even(a, "RESIDENCE", "1900/1800");  // fourchette à l'envers
  Even(b, "DECES", "31/12/9999");
  Even(b, "RESIDENCE", "01/01/0001");
  for (const long no : {a, b}) {
    const TEstimationPersonne e = Estime(no, true, true);
    VerifieSain(e);
  }
  const TEstimationPersonne ea = Estime(a);
  EXPECT_EQ(ea.AnneeNaissance, kInc);  // l'année 0 ne se lit pas
  EXPECT_OUVERT(ea.IntervalFaits);     // la fourchette renversée ne dit rien

  // Vivant avant 1850 et après 2000 : naissance ouverte en bas, décès ouvert en haut, que
  // rien ne relie (cent ans de vie ne suffisent pas). La dernière règle d'incohérence met la
  // naissance de 2000 à 1850 (renversée, donc oubliée) et le décès en 2000.
  const long c = Ajoute("C");
  Even(c, "RESIDENCE", "../../1849", 0, "<");
  Even(c, "RESIDENCE", "../../2000", 0, ">");
  const TEstimationPersonne ec = Estime(c);
  VerifieSain(ec);
  EXPECT_OUVERT(ec.IntervalNaissance);
  EXPECT_BORNES(ec.IntervalDeces, 2000 + kJ1, 2000 + kJ1);
}

TEST_F(EstimationTest, CentCinquanteEnfants) {
  const long pere = Ajoute("PERE", 'M');
  Gest->ModuleBDD()->BeginImport();
  TPerson pp(Fic, pere);
  for (int i = 0; i < TPerson::NbEnfants; ++i) {
    const long e = Ajoute("ENFANT");
    TPerson enf(Fic, e, true);
    enf.Enreg.Pere = TLienPers(pere);
    TEvenement ev(Gest->ModuleBDD());
    ev.Enreg.SetLibelle("NAISSANCE");
    ev.Enreg.Date = TDateRQ(1800 + i % 40, "01/01/");
    ev.Enreg.NoPersA = e;
    ASSERT_TRUE(enf.AjoutEven(&ev, true, false, false));
    enf.Enregistrement();
    pp.Enreg.Enfants[i] = TLienPers(e);
  }
  pp.Enregistrement();
  Gest->ModuleBDD()->EndImport();
  const TEstimationPersonne e = Estime(pere, true, true);
  VerifieSain(e);
  // Le dernier enfant né fixe le plancher du décès.
  EXPECT_FALSE(e.IntervalDeces.InfOuvert);
  EXPECT_NEAR(e.IntervalDeces.Inf, 1839 + kJ1, kTol);
  // Les enfants de 1800 à 1839 ne tiennent pas tous dans une vie de père : ceux de 1800 à
  // 1832 resserrent la naissance jusqu'à 1782 seul ; les suivants la contredisent et sont
  // écartés, sans la rendre vide ni renversée. Le décès reste dans les cent ans.
  EXPECT_BORNES(e.IntervalNaissance, 1782 + kJ1, 1782 + kJ1);
  EXPECT_BORNES(e.IntervalDeces, 1839 + kJ1, 1882 + kJ1);
}

TEST_F(EstimationTest, FamilleAuHasardJamaisDIntervalleRenverse) {
  // Des liens posés sans contrôle (cycles, soi-même, hors du fichier) et des dates de toutes
  // les formes, justes ou absurdes ; graine fixe. Chaque personne est estimée en entier, avec
  // les règles de l'utilisateur, la forme moyenne et un cache partagé : rien ne doit être
  // renversé ni valoir autre chose qu'un nombre.
  struct TDateEssai {
    char calendrier;
    const char* texte;
  };
  const TDateEssai dates[] = {{'G', "01/01/1850"}, {'G', "../../1850"}, {'G', "1850/1860"}, {'G', "..../1850"},
                              {'G', "1850/...."},  {'G', "1900/1800"},  {'G', "00/00/0000"}, {'G', "31/12/9999"},
                              {'G', "../02/1793"}, {'R', "10/VENT/05"}, {'A', "0500/0400"}, {'A', "../../0044"},
                              {'H', "01/01/5600"}, {'G', "xx/yy/zzzz"}, {'G', ""}};
  const char* actes[] = {"", "<", ">", "ca", "?", "p"};
  const char* libelles[] = {"NAISSANCE", "BAPTEME", "DECES", "INHUMATION", "RESIDENCE", "UNION", "PROFESSION"};
  std::mt19937 hasard(42);
  auto tire = [&](int n) { return static_cast<int>(hasard() % static_cast<unsigned>(n)); };
  std::vector<long> nos;
  for (int i = 0; i < 40; ++i) nos.push_back(Ajoute("P", "MF?"[i % 3]));
  auto quelquun = [&]() -> long { return tire(10) == 0 ? 999 : nos[static_cast<size_t>(tire(40))]; };
  Gest->ModuleBDD()->BeginImport();
  for (const long no : nos) {
    TPerson p(Fic, no, true);
    p.Enreg.Pere = TLienPers(quelquun());
    p.Enreg.Mere = TLienPers(quelquun());
    for (int k = 0; k < tire(4); ++k) p.Enreg.Conjoints[k] = TLienConj(quelquun());
    for (int k = 0; k < tire(6); ++k) p.Enreg.Enfants[k] = TLienPers(quelquun());
    for (int k = 0; k < tire(6); ++k) {
      TEvenement e(Gest->ModuleBDD());
      e.Enreg.SetLibelle(libelles[tire(7)]);
      const TDateEssai& d = dates[tire(15)];
      e.Enreg.Date = TDateRQ(d.calendrier, d.texte);
      e.Enreg.Date.SetActe(actes[tire(6)]);
      e.Enreg.NoPersA = no;
      ASSERT_TRUE(p.AjoutEven(&e, true, false, false));
    }
    p.Enregistrement();
  }
  Gest->ModuleBDD()->EndImport();
  TEstimationCalculee cache;
  int bornees = 0;
  for (const long no : nos) {
    const TEstimationPersonne e = Estime(no, true, true, &cache);
    VerifieSain(e);
    VerifieSain(Estime(no));
    if (!e.IntervalNaissance.InfOuvert || !e.IntervalNaissance.SupOuvert) ++bornees;
  }
  EXPECT_EQ(cache.Portee(nos[0]), 1);
  EXPECT_GT(bornees, 10);  // l'essai a de quoi se tromper : bien des naissances sont bornées
}

}  // namespace
}  // namespace rqbase
