// TPerson : liens défaits des deux côtés, suppression, ordre des conjoints et des enfants,
// couples de même sexe, réparations, fantômes ; et une suite d'opérations tirées au hasard
// (graine fixe) après chacune desquelles les règles du graphe familial sont vérifiées sur
// chaque fiche relue du disque.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <vector>

#include "personne_essai.h"
#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

class LiensTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true);
    ASSERT_FALSE(Gest->EnErreur());
    Fic = Gest->FicPersons();
    Bdd = Gest->ModuleBDD();
    ASSERT_NE(Bdd, nullptr);
  }
  void TearDown() override { InstalleDialogue(nullptr); }

  long Ajoute(const char* nom, char sexe) { return essai::AjoutePersonne(Fic, nom, sexe); }
  // La fiche telle qu'elle est sur le disque.
  TPerson Disque(long no, bool complement = false) { return TPerson(Fic, no, complement); }

  void Conjoints(long a, long b) {
    TPerson pa = Disque(a), pb = Disque(b);
    pa.AjouteConj(b);
    pb.AjouteConj(a);
    pa.Enregistrement();
    pb.Enregistrement();
  }
  // L'enfant reçoit ses parents (0 : aucun), les parents l'enfant, et deviennent conjoints.
  void Enfant(long enfant, long pere, long mere) {
    if (pere && mere) Conjoints(pere, mere);
    TPerson e = Disque(enfant);
    e.Enreg.Pere = TLienPers(pere);
    e.Enreg.Mere = TLienPers(mere);
    e.Enregistrement();
    for (long parent : {pere, mere}) {
      if (!parent) continue;
      TPerson p = Disque(parent);
      p.AjouteEnf(enfant, -1);
      p.Enregistrement();
    }
  }
  // Un événement daté (date vide : sans date), d'un couple si `conjoint`.
  void Evenement(long no, const char* libelle, const char* date, long conjoint = 0) {
    ASSERT_NE(essai::AjouteFait(Fic, Bdd, no, {.Libelle = libelle, .Date = date, .Conjoint = conjoint}), 0);
  }
  std::vector<long> EnfantsDe(long no) {
    std::vector<long> v;
    Disque(no).GetVectorEnfants(v);
    return v;
  }
  std::vector<long> ConjointsDe(long no) {
    std::vector<long> v;
    const TPerson p = Disque(no);
    for (const TLienConj& c : p.Enreg.Conjoints)
      if (c.No) v.push_back(c.No);
    return v;
  }
  // Les 644 octets de chaque fiche, pour voir qu'un refus n'a rien écrit.
  std::vector<std::string> Fiches() {
    std::vector<std::string> r;
    for (long no = 1; no <= Fic->NbPersEffective(); ++no) {
      TEnregPersonne e{};
      Fic->LitEnreg(no, e);
      r.emplace_back(reinterpret_cast<const char*>(&e), sizeof e);
    }
    return r;
  }
  // Aucune fiche vivante ne nomme `no`.
  void PersonneNeLeNomme(long no) {
    for (long k = 1; k <= Fic->NbPersEffective(); ++k) {
      if (k == no) continue;
      const TPerson p = Disque(k);
      if (p.FicheSupprimee()) continue;
      EXPECT_NE(long{p.Enreg.Pere.No}, no) << k;
      EXPECT_NE(long{p.Enreg.Mere.No}, no) << k;
      EXPECT_EQ(p.RetourneRgConj(no), 0) << k;
      EXPECT_EQ(p.RetourneRgEnf(no), 0) << k;
    }
  }

  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicPersons* Fic = nullptr;
  TModuleBDD* Bdd = nullptr;
};

TEST_F(LiensTest, SupprimeLienParentDefaitLesDeuxCotesEtDateLeParent) {
  const long pere = Ajoute("PERE", 'M'), mere = Ajoute("MERE", 'F'), fils = Ajoute("FILS", 'M');
  Enfant(fils, pere, mere);
  TPerson f = Disque(fils);
  int rappels = 0;
  f.OnSupprPere = [&](TPerson&) { ++rappels; };
  f.SupprimeLienParent(true);
  EXPECT_EQ(rappels, 1);
  EXPECT_EQ(long{Disque(fils).Enreg.Pere.No}, 0);
  EXPECT_EQ(long{Disque(fils).Enreg.Mere.No}, mere);
  EXPECT_THAT(EnfantsDe(pere), testing::IsEmpty());
  EXPECT_THAT(EnfantsDe(mere), testing::ElementsAre(fils));
  // Les parents restent conjoints ; le père changé porte sa date de modification.
  EXPECT_THAT(ConjointsDe(pere), testing::ElementsAre(mere));
  TPerson p = Disque(pere, true);
  EXPECT_GT(p.GetRgChpsSimple("DDMF"), 0);
  EXPECT_GT(p.GetRgChpsSimple("DCF"), 0);
  // Sans père, rien ne change chez personne.
  const auto avant = Fiches();
  TPerson(Fic, fils).SupprimeLienParent(true);
  EXPECT_TRUE(Fiches() == avant) << "une fiche a changé";
}

TEST_F(LiensTest, SuppressionGardeSesLiensEtPlusPersonneNeLaNomme) {
  const long pere = Ajoute("PERE", 'M'), mere = Ajoute("MERE", 'F');
  const long moi = Ajoute("MOI", 'M'), femme1 = Ajoute("FEMME", 'F'), femme2 = Ajoute("SECONDE", 'F');
  const long fille = Ajoute("FILLE", 'F'), fils = Ajoute("FILS", 'M');
  Enfant(moi, pere, mere);
  Conjoints(moi, femme2);
  Enfant(fille, moi, femme1);
  Enfant(fils, moi, femme2);
  Evenement(moi, "UNION", "12/05/1900", femme1);
  const long nbSupprAvant = Gest->FicPersSuppr()->GetNbPersSuppr();

  TPerson p = Disque(moi);
  p.Suppression(true);

  const TPerson relu = Disque(moi);
  EXPECT_TRUE(relu.FicheSupprimee());
  EXPECT_STREQ(relu.Enreg.Nom, "XXX");
  EXPECT_EQ(long{relu.Enreg.Pere.No}, pere);
  EXPECT_EQ(long{relu.Enreg.Mere.No}, mere);
  EXPECT_EQ(relu.CompteNbConjoint(), 2);
  EXPECT_EQ(relu.CompteNbEnfant(), 2);
  PersonneNeLeNomme(moi);
  // La réparation ne la rend pas à ses proches.
  EXPECT_FALSE(Disque(moi).VerifLienSysmetrique());
  PersonneNeLeNomme(moi);
  // Les autres liens restent : la fille garde sa mère, qui la garde.
  EXPECT_EQ(long{Disque(fille).Enreg.Mere.No}, femme1);
  EXPECT_THAT(EnfantsDe(femme1), testing::ElementsAre(fille));
  EXPECT_EQ(Gest->FicPersSuppr()->GetNbPersSuppr(), nbSupprAvant + 1);
  // L'union ne se lit plus chez la veuve ; RestaurationData la rend.
  EXPECT_EQ(Disque(femme1, true).GetRgEven("UNION"), 0);
  TPerson(Fic, moi).RestaurationData();
  EXPECT_GT(Disque(femme1, true).GetRgEven("UNION"), 0);

  // Une seconde suppression ne compte pas la personne deux fois.
  TPerson encore = Disque(moi);
  encore.Suppression(false);
  EXPECT_EQ(Gest->FicPersSuppr()->GetNbPersSuppr(), nbSupprAvant + 1);
}

TEST_F(LiensTest, UnePersonneSupprimeeNEstPlusCiteePuisRevientAvecSesDonnees) {
  const long temoin = Ajoute("TEMOIN", 'M'), marie = Ajoute("MARIE", 'F');
  long noEven = 0;
  {
    TPerson m(Fic, marie, true);
    TEvenement e(Bdd);
    e.Enreg.SetLibelle("NAISSANCE");
    e.Enreg.NoPersA = marie;
    TPersAssociee cite;
    cite.Lien = TLienPers(temoin);
    e.Enreg.PersAssocieesChargees = true;
    e.Enreg.AjoutPersAssociee(cite);
    ASSERT_TRUE(m.AjoutEven(&e, true, false, true));
    noEven = e.Enreg.No;
    m.AjoutLiensPersCitees(noEven, e.Enreg.PersAssociees);
  }
  auto cites = [&] {
    TEvenement e(Bdd, noEven);
    return e.Enreg.ChercheRgNoPersAssociee(temoin) >= 0 || e.GetPersAssociee()[0].Lien.No == temoin;
  };
  ASSERT_TRUE(cites());
  ASSERT_TRUE(TPerson(Fic, temoin).IsCitee());
  const long evenements = Bdd->GetNbEvenements();

  TPerson t = Disque(temoin);
  t.Suppression(false);
  EXPECT_FALSE(cites());
  EXPECT_EQ(Bdd->GetNbEvenements(), evenements);  // aucune ligne faite ni écrasée
  TPerson(Fic, temoin).RestaurationData();
  EXPECT_TRUE(cites());
}

TEST_F(LiensTest, UnConjointQuiResteParentEstRefuseSansRienEcrire) {
  const long moi = Ajoute("MOI", 'M'), femme = Ajoute("FEMME", 'F'), autre = Ajoute("AUTRE", 'F');
  const long fils = Ajoute("FILS", 'M');
  Enfant(fils, moi, femme);
  Conjoints(moi, autre);
  Evenement(moi, "UNION", "01/01/1900", femme);

  // Table des choix : père, mère, deux conjoints, un enfant.
  bool choix[5] = {false, false, true, false, false};
  const auto avant = Fiches();
  TPerson p = Disque(moi);
  EXPECT_THROW(p.SupprimeLien(choix), ERqBase);
  EXPECT_TRUE(Fiches() == avant) << "une fiche a changé";

  // Avec l'enfant commun, le lien part, et l'union quitte la liste de la personne.
  bool tous[5] = {false, false, true, false, true};
  TPerson q = Disque(moi);
  int conj = 0, enf = 0;
  q.OnSupprConjoint = [&](TPerson&) { ++conj; };
  q.OnSupprEnfant = [&](TPerson&) { ++enf; };
  q.SupprimeLien(tous);
  EXPECT_EQ(conj, 1);
  EXPECT_EQ(enf, 1);
  EXPECT_THAT(ConjointsDe(moi), testing::ElementsAre(autre));
  EXPECT_THAT(ConjointsDe(femme), testing::IsEmpty());
  EXPECT_THAT(EnfantsDe(moi), testing::IsEmpty());
  EXPECT_EQ(long{Disque(fils).Enreg.Pere.No}, 0);
  EXPECT_EQ(long{Disque(fils).Enreg.Mere.No}, femme);
  EXPECT_EQ(Disque(moi, true).GetRgEven("UNION"), 0);
}

TEST_F(LiensTest, LienConjointRetireLesChampsSimplesDuCoupleSaufGardes) {
  const long moi = Ajoute("MOI", 'M'), femme = Ajoute("FEMME", 'F');
  Conjoints(moi, femme);
  {
    TPerson p(Fic, moi, true);
    ASSERT_GT(p.AjoutChpsSimpleViergeImmediatDisque("CONTRAT", femme, nullptr), 0);
  }
  TPerson p(Fic, moi, true);
  ASSERT_GT(p.GetRgChpsSimple("CONTRAT"), 0);
  long no = femme;
  p.SupprimeLienConjoint(no, true);
  EXPECT_EQ(no, 0);
  EXPECT_GT(p.GetRgChpsSimple("CONTRAT"), 0);  // gardé sur demande
  EXPECT_EQ(p.RetourneRgConj(femme), 0);
  EXPECT_THAT(ConjointsDe(femme), testing::IsEmpty());

  Conjoints(moi, femme);
  TPerson q(Fic, moi, true);
  no = femme;
  q.SupprimeLienConjoint(no, false);
  EXPECT_EQ(q.GetRgChpsSimple("CONTRAT"), 0);
}

TEST_F(LiensTest, ClassementDesConjointsEtDesEnfants) {
  // Conjoints : A marié en 1900, U1 sans date, C marié en 1850, U2 sans date. Les deux
  // sans date gardent leurs places, C et A s'échangent autour d'elles.
  const long moi = Ajoute("MOI", 'M');
  const long a = Ajoute("A", 'F'), u1 = Ajoute("U1", 'F'), c = Ajoute("C", 'F'), u2 = Ajoute("U2", 'F');
  for (long s : {a, u1, c, u2}) Conjoints(moi, s);
  Evenement(moi, "UNION", "10/06/1900", a);
  Evenement(moi, "UNION", "10/06/1850", c);
  // Enfants dans l'ordre k1 (de A, 1905), k2 (de C, sans date), k3 (de C, 1852), k4 (de U1).
  const long k1 = Ajoute("K1", 'M'), k2 = Ajoute("K2", 'M'), k3 = Ajoute("K3", 'M'), k4 = Ajoute("K4", 'M');
  Enfant(k1, moi, a);
  Enfant(k2, moi, c);
  Enfant(k3, moi, c);
  Enfant(k4, moi, u1);
  Evenement(k1, "NAISSANCE", "01/02/1905");
  Evenement(k3, "NAISSANCE", "01/02/1852");

  TPerson p(Fic, moi);
  p.EnregClassementEnfConj(true);
  EXPECT_THAT(ConjointsDe(moi), testing::ElementsAre(c, u1, a, u2));
  // Tri des dates : k3 passe devant ; puis k4 (conjoint de rang 2, sans date) glisse
  // devant k1 (conjoint de rang 3, daté).
  EXPECT_THAT(EnfantsDe(moi), testing::ElementsAre(k3, k2, k4, k1));
  // Les rangs d'union suivent : l'union avec C est au rang 1, en mémoire et relue.
  auto rangUnion = [&](TPerson& q, long conj) {
    for (int rg = 1; rg <= q.GetNbInfoEven(); ++rg) {
      const TEvenementTV* e = q.Evens()->Lit(rg - 1);
      if (e->Enreg.IsCouple(moi, conj)) return e->RgUnion;
    }
    return -1;
  };
  EXPECT_EQ(rangUnion(p, c), 1);
  EXPECT_EQ(rangUnion(p, a), 3);
  TPerson relu(Fic, moi, true);
  EXPECT_EQ(rangUnion(relu, c), 1);
  EXPECT_EQ(rangUnion(relu, a), 3);
}

TEST_F(LiensTest, EnfantsCommunsPrennentLOrdreDuConjoint) {
  const long mere = Ajoute("MERE", 'F'), pere = Ajoute("PERE", 'M');
  const long x = Ajoute("X", 'M'), y = Ajoute("Y", 'M'), z = Ajoute("Z", 'M');
  Enfant(x, pere, mere);
  Enfant(y, pere, mere);
  Enfant(z, 0, mere);
  TPerson p = Disque(pere);
  p.SetVectorEnfants({y, x});
  p.Enregistrement();
  TPerson(Fic, mere).EnregClassementEnfConj(false);
  EXPECT_THAT(EnfantsDe(mere), testing::ElementsAre(y, x, z));
}

TEST_F(LiensTest, CoupleDeMemeSexeSelonLaReponse) {
  auto prepare = [&](long& moi, long& femme, long& fils) {
    moi = Ajoute("MOI", 'M');
    femme = Ajoute("FEMME", 'F');
    fils = Ajoute("FILS", 'M');
    Enfant(fils, moi, femme);
  };
  TDialogueFixe dialogue(ReponseOui);
  InstalleDialogue(&dialogue);

  // Oui : la conjointe devient un homme, et l'enfant voit ses parents échangés.
  long moi, femme, fils;
  prepare(moi, femme, fils);
  TPerson p = Disque(moi);
  p.SetSexe('F');
  int reponse = 0;
  EXPECT_TRUE(p.GestionCoupleHomoSexuel('M', &reponse));
  EXPECT_EQ(reponse, ReponseOui);
  ASSERT_EQ(dialogue.Questions.size(), 1u);
  EXPECT_EQ(dialogue.Questions[0].Texte, "Souhaitez-vous inverser le sexe de tous les conjoints ?");
  EXPECT_EQ(Disque(moi).Enreg.Sexe, 'F');
  EXPECT_EQ(Disque(femme).Enreg.Sexe, 'M');
  EXPECT_EQ(long{Disque(fils).Enreg.Pere.No}, femme);
  EXPECT_EQ(long{Disque(fils).Enreg.Mere.No}, moi);

  // Non : le couple reste de même sexe, les places de l'enfant aussi.
  prepare(moi, femme, fils);
  dialogue.Reponse = ReponseNon;
  TPerson q = Disque(moi);
  q.SetSexe('F');
  EXPECT_TRUE(q.GestionCoupleHomoSexuel('M', nullptr));
  EXPECT_EQ(Disque(moi).Enreg.Sexe, 'F');
  EXPECT_EQ(Disque(femme).Enreg.Sexe, 'F');
  EXPECT_EQ(long{Disque(fils).Enreg.Pere.No}, moi);
  EXPECT_TRUE(Disque(moi).IsCouplesHomosexuel());

  // Annuler : le sexe d'avant revient, rien d'autre ne change.
  prepare(moi, femme, fils);
  dialogue.Reponse = ReponseAnnuler;
  TPerson r = Disque(moi);
  r.SetSexe('F');
  EXPECT_FALSE(r.GestionCoupleHomoSexuel('M', &reponse));
  EXPECT_EQ(reponse, ReponseAnnuler);
  EXPECT_EQ(Disque(moi).Enreg.Sexe, 'M');
  EXPECT_EQ(Disque(femme).Enreg.Sexe, 'F');

  // Sans couple de même sexe, pas de question : une mère qui se dit homme passe père.
  const size_t questions = dialogue.Questions.size();
  const long seul = Ajoute("SEUL", 'F'), enfant = Ajoute("ENFANT", 'F');
  Enfant(enfant, 0, seul);
  TPerson s = Disque(seul);
  s.SetSexe('M');
  EXPECT_TRUE(s.GestionCoupleHomoSexuel('F', nullptr));
  EXPECT_EQ(dialogue.Questions.size(), questions);
  EXPECT_EQ(long{Disque(enfant).Enreg.Pere.No}, seul);
  EXPECT_EQ(long{Disque(enfant).Enreg.Mere.No}, 0);
}

TEST_F(LiensTest, InverserSexeConjointsBasculeUneChaineDeRemariages) {
  const long a = Ajoute("A", 'M'), b = Ajoute("B", 'F'), c = Ajoute("C", 'M');
  Conjoints(a, b);
  Conjoints(b, c);
  std::set<long> faits{a}, enfants;
  TPerson(Fic, a).InverserSexeConjoints(&faits, &enfants);
  EXPECT_EQ(Disque(a).Enreg.Sexe, 'M');  // la personne elle-même ne bascule pas
  EXPECT_EQ(Disque(b).Enreg.Sexe, 'M');
  EXPECT_EQ(Disque(c).Enreg.Sexe, 'F');
}

TEST_F(LiensTest, VerifLienHorsFichierCompteLesEnfantsEtConjointsPerdus) {
  const long moi = Ajoute("MOI", 'M'), fils = Ajoute("FILS", 'M');
  const long nb = Fic->NbPersEffective();
  // Cinq liens hors du fichier : effacés seuls, la table tassée, le fils gardé.
  TPerson p = Disque(moi);
  p.SetVectorEnfants({nb + 1, fils, -4, nb + 7});
  p.Enreg.Conjoints[0] = TLienConj(nb + 2);
  p.Enreg.Conjoints[1] = TLienConj(moi);  // vers soi : effacé, non compté
  p.Enreg.Conjoints[2] = TLienConj(nb + 3);
  p.Enreg.Pere = TLienPers(nb + 9);  // père et mère ne comptent pas
  p.Enreg.Mere = TLienPers(-1);
  EXPECT_TRUE(p.VerifLienHorsFichier());
  EXPECT_FALSE(p.FicheSupprimee());
  EXPECT_STREQ(p.Enreg.Nom, "MOI");
  std::vector<long> enfants;
  p.GetVectorEnfants(enfants);
  EXPECT_THAT(enfants, testing::ElementsAre(fils));
  EXPECT_EQ(p.CompteNbConjoint(), 0);
  EXPECT_EQ(long{p.Enreg.Pere.No}, 0);
  EXPECT_EQ(long{p.Enreg.Mere.No}, 0);
  EXPECT_FALSE(p.VerifLienHorsFichier());

  // Un sixième : la fiche est perdue.
  TPerson q = Disque(moi);
  q.SetVectorEnfants({nb + 1, nb + 2, nb + 3, nb + 4, nb + 5, nb + 6});
  EXPECT_TRUE(q.VerifLienHorsFichier());
  EXPECT_TRUE(q.FicheSupprimee());
  EXPECT_EQ(q.Enreg.Nom[0], 0);
  EXPECT_EQ(q.CompteNbEnfant(), 0);
}

TEST_F(LiensTest, VerifLienSysmetriqueReparerEtRevivre) {
  // Un père supprimé qui garde l'enfant revit ; un autre, qui n'a ni l'enfant ni la mère,
  // est coupé.
  const long pere = Ajoute("PERE", 'M'), mere = Ajoute("MERE", 'F'), fils = Ajoute("FILS", 'M');
  Enfant(fils, pere, mere);
  {
    TPerson p = Disque(pere);
    p.Enreg.Supprime = 'O';
    p.Enregistrement();
  }
  TPerson f = Disque(fils);
  EXPECT_FALSE(f.VerifLienSysmetrique());
  EXPECT_FALSE(Disque(pere).FicheSupprimee());

  const long inconnu = Ajoute("INCONNU", 'M'), fille = Ajoute("FILLE", 'F');
  {
    TPerson i = Disque(inconnu);
    i.Enreg.Supprime = 'O';
    i.Enregistrement();
    TPerson e = Disque(fille);
    e.Enreg.Pere = TLienPers(inconnu);
    e.Enreg.Mere = TLienPers(mere);
    e.Enregistrement();
  }
  TPerson e = Disque(fille);
  EXPECT_TRUE(e.VerifLienSysmetrique());
  EXPECT_EQ(long{e.Enreg.Pere.No}, 0);
  e.Enregistrement();
  EXPECT_TRUE(Disque(inconnu).FicheSupprimee());
  // La mère a reçu la fille qu'elle ne listait pas.
  EXPECT_THAT(EnfantsDe(mere), testing::ElementsAre(fils, fille));

  // Un conjoint d'un seul côté reçoit l'autre ; un enfant sans mère reçoit la personne.
  const long seule = Ajoute("SEULE", 'F'), mari = Ajoute("MARI", 'M'), petit = Ajoute("PETIT", 'M');
  {
    TPerson s = Disque(seule);
    s.AjouteConj(mari);
    s.AjouteEnf(petit, -1);
    s.Enregistrement();
  }
  TPerson s = Disque(seule);
  EXPECT_FALSE(s.VerifLienSysmetrique());  // ses propres liens ne changent pas
  EXPECT_THAT(ConjointsDe(mari), testing::ElementsAre(seule));
  EXPECT_EQ(long{Disque(petit).Enreg.Mere.No}, seule);

  // Sur un graphe juste, rien ne s'écrit.
  const auto avant = Fiches();
  for (long no = 1; no <= Fic->NbPersEffective(); ++no) {
    TPerson q = Disque(no);
    if (q.FicheSupprimee()) continue;
    EXPECT_FALSE(q.VerifLienSysmetrique()) << no;
  }
  EXPECT_TRUE(Fiches() == avant) << "une fiche a changé";
}

TEST_F(LiensTest, UnEnfantDejaAUnAutreParentEstRetireDeLaTable) {
  const long vrai = Ajoute("VRAI", 'M'), intrus = Ajoute("INTRUS", 'M'), fils = Ajoute("FILS", 'M');
  Enfant(fils, vrai, 0);
  TPerson i = Disque(intrus);
  i.AjouteEnf(fils, -1);
  i.Enregistrement();
  TPerson j = Disque(intrus);
  EXPECT_TRUE(j.VerifLienSysmetrique());
  EXPECT_EQ(j.CompteNbEnfant(), 0);
  EXPECT_EQ(long{Disque(fils).Enreg.Pere.No}, vrai);
}

TEST_F(LiensTest, FantomesAuBoutDuFichier) {
  const long moi = Ajoute("MOI", 'M'), femme = Ajoute("FEMME", 'F');
  Conjoints(moi, femme);
  const long nb = Fic->NbPersEffective();
  TPerson(Fic, moi).AddPersGhost(3);
  ASSERT_EQ(Fic->NbPersEffective(), nb + 3);
  for (long no = nb + 1; no <= nb + 3; ++no) {
    const TPerson g = Disque(no);
    EXPECT_TRUE(g.FicheSupprimee());
    EXPECT_STREQ(g.Enreg.Nom, "MOI");
    EXPECT_EQ(g.Enreg.Extension, 0);
    PersonneNeLeNomme(no);
  }
  // Le compte écrit dans l'en-tête suit : un dossier rouvert le retrouve.
  Gest.reset();
  TGestFichier relu(Temp.Prs());
  EXPECT_EQ(relu.FicPersons()->NbPersEffective(), nb + 3);
  TPerson(relu.FicPersons(), moi).AddPersGhost(0);
  EXPECT_EQ(relu.FicPersons()->NbPersEffective(), nb + 3);
}

TEST_F(LiensTest, FantomeEcritAMoitieArreteLaSuiteEtNEstPasCompte) {
  const long moi = Ajoute("MOI", 'M');
  const long nb = Fic->NbPersEffective();
  // Le premier fantôme et son en-tête passent ; le second revient court.
  TFichierBrut::Pannes().EcritureCourteApres(2, ".prs");
  TPerson(Fic, moi).AddPersGhost(3);
  TFichierBrut::Pannes().Raz();
  EXPECT_TRUE(Gest->EcritureRatee());
  Gest.reset();
  TGestFichier relu(Temp.Prs());
  ASSERT_FALSE(relu.EnErreur());
  EXPECT_EQ(relu.FicPersons()->NbPersEffective(), nb + 1);
  EXPECT_TRUE(TPerson(relu.FicPersons(), nb + 1).FicheSupprimee());
}

TEST_F(LiensTest, DossierEnLectureSeuleRienNeChangeSurLeDisque) {
  const long pere = Ajoute("PERE", 'M'), mere = Ajoute("MERE", 'F'), fils = Ajoute("FILS", 'M');
  Enfant(fils, pere, mere);
  Evenement(pere, "UNION", "01/01/1900", mere);
  Gest.reset();
  const auto avant = essai::Instantane(Temp.Dossier());
  {
    TGestFichier lecture(Temp.Prs(), false, false, false, false, 0, mcFormulaire, true);
    ASSERT_TRUE(lecture.IsReadOnly());
    TFicPersons* fic = lecture.FicPersons();
    TPerson(fic, fils).SupprimeLienParent(true);
    TPerson(fic, pere).EnregClassementEnfConj(true);
    TPerson(fic, pere).VerifLienSysmetrique();
    TPerson(fic, pere).AddPersGhost(2);
    TPerson(fic, pere).RetourneIdPers(true);
    TPerson(fic, mere).Suppression(true);
    TPerson(fic, mere).RestaurationData();
  }
  EXPECT_TRUE(essai::Instantane(Temp.Dossier()) == avant) << "le dossier a changé";
}

TEST_F(LiensTest, LiensAbimesNeFontPasTomber) {
  const long moi = Ajoute("MOI", 'F'), fils = Ajoute("FILS", 'M');
  Enfant(fils, 0, moi);
  const long nb = Fic->NbPersEffective();
  {
    TPerson p = Disque(moi);
    p.SetVectorEnfants({nb + 5, -3, fils, moi});
    p.Enreg.Conjoints[0] = TLienConj(nb + 2);
    p.Enreg.Conjoints[1] = TLienConj(-8);
    p.Enregistrement();
  }
  TPerson a = Disque(moi);
  a.EnregClassementEnfConj(true);
  EXPECT_FALSE(a.IsCouplesHomosexuel());
  EXPECT_TRUE(a.VerifLienSysmetrique());  // le lien vers soi
  bool tous[2 + 2 + 4] = {true, true, true, true, true, true, true, true};
  TPerson b = Disque(moi);
  b.SupprimeLien(tous);
  // Le vrai fils a perdu sa mère ; ce qui pointait hors du fichier est resté, laissé à
  // VerifLienHorsFichier.
  EXPECT_EQ(long{Disque(fils).Enreg.Mere.No}, 0);
  TPerson c = Disque(moi);
  EXPECT_EQ(c.RetourneRgEnf(fils), 0);
  EXPECT_TRUE(c.VerifLienHorsFichier());
  EXPECT_TRUE(c.AucunLien());
  c.Suppression(false);
  EXPECT_TRUE(Disque(moi).FicheSupprimee());
}

// ===== Suite tirée au hasard =====

// Les règles du graphe sur chaque fiche relue du disque ; rend le premier écart, vide sinon.
std::string EcartAuxRegles(TFicPersons* fic) {
  const long nb = fic->NbPersEffective();
  std::vector<TPerson> p;
  p.reserve(static_cast<size_t>(nb) + 1);
  p.emplace_back(fic);
  for (long no = 1; no <= nb; ++no) p.emplace_back(fic, no, true);
  auto dit = [](long no, const char* quoi) { return "fiche " + std::to_string(no) + " : " + quoi; };
  auto vivante = [&](long no) { return no >= 1 && no <= nb && !p[static_cast<size_t>(no)].FicheSupprimee(); };
  for (long no = 1; no <= nb; ++no) {
    TPerson& a = p[static_cast<size_t>(no)];
    if (a.FicheSupprimee()) continue;
    const long pere = a.Enreg.Pere.No, mere = a.Enreg.Mere.No;
    for (long parent : {pere, mere}) {
      if (parent == 0) continue;
      if (!vivante(parent) || parent == no) return dit(no, "parent hors des vivants");
      if (p[static_cast<size_t>(parent)].RetourneRgEnf(no) == 0) return dit(no, "absent des enfants d'un parent");
    }
    if (pere && p[static_cast<size_t>(pere)].Enreg.Sexe != 'M') return dit(no, "père qui n'est pas un homme");
    if (mere && p[static_cast<size_t>(mere)].Enreg.Sexe != 'F') return dit(no, "mère qui n'est pas une femme");
    if (pere && mere &&
        (p[static_cast<size_t>(pere)].RetourneRgConj(mere) == 0 ||
         p[static_cast<size_t>(mere)].RetourneRgConj(pere) == 0))
      return dit(no, "parents qui ne sont pas conjoints");
    bool trou = false;
    for (const TLienConj& c : a.Enreg.Conjoints) {
      if (c.No == 0) {
        trou = true;
        continue;
      }
      if (trou) return dit(no, "conjoints non tassés");
      if (!vivante(c.No) || c.No == no) return dit(no, "conjoint hors des vivants");
      if (p[static_cast<size_t>(c.No)].RetourneRgConj(no) == 0) return dit(no, "conjoint d'un seul côté");
      if (a.RetourneRgConj(c.No) != &c - a.Enreg.Conjoints + 1) return dit(no, "conjoint en double");
    }
    trou = false;
    for (const TLienPers& e : a.Enreg.Enfants) {
      if (e.No == 0) {
        trou = true;
        continue;
      }
      if (trou) return dit(no, "enfants non tassés");
      if (!vivante(e.No) || e.No == no) return dit(no, "enfant hors des vivants");
      const TPerson& enf = p[static_cast<size_t>(e.No)];
      if (enf.Enreg.Pere.No != no && enf.Enreg.Mere.No != no) return dit(no, "enfant qui ne le nomme pas");
    }
    // Les rangs d'union des faits de couple suivent la table des conjoints.
    for (int rg = 1; rg <= a.GetNbInfoEven(); ++rg) {
      const TEvenementTV* ev = a.Evens()->Lit(rg - 1);
      if (ev->RgUnion != a.RetourneRgConj(ev->Enreg.NoConjoint(no))) return dit(no, "rang d'union faux");
    }
  }
  return "";
}

TEST_F(LiensTest, SuiteTireeAuHasardGardeLesReglesSurLeDisque) {
  std::mt19937 hasard(20261123);
  auto tire = [&](int n) { return static_cast<int>(hasard() % static_cast<unsigned>(n)); };
  // Une vingtaine de vivants : une personne neuve remplace chaque supprimée.
  std::vector<long> vivants;
  auto nouvelle = [&] {
    const long no = Ajoute(("P" + std::to_string(Fic->NbPersEffective() + 1)).c_str(), tire(2) ? 'F' : 'M');
    vivants.push_back(no);
  };
  for (int i = 0; i < 20; ++i) nouvelle();
  auto au_hasard = [&] { return vivants[static_cast<size_t>(tire(static_cast<int>(vivants.size())))]; };
  auto vivante = [&](long no) { return !Disque(no).FicheSupprimee(); };
  // Une date au hasard, parfois aucune.
  auto date = [&]() -> std::string {
    if (tire(3) == 0) return "";
    return "15/0" + std::to_string(1 + tire(9)) + "/" + std::to_string(1800 + tire(150));
  };

  const int operations = 2500;
  int faites[10] = {}, refus = 0;
  std::vector<long> supprimes;
  for (int n = 0; n < operations; ++n) {
    const int genre = tire(10);
    const long a = au_hasard(), b = au_hasard();
    SCOPED_TRACE("opération " + std::to_string(n) + ", genre " + std::to_string(genre));
    switch (genre) {
      case 0:
      case 1: {  // lier un enfant à un parent du bon sexe
        if (a == b || !vivante(a) || !vivante(b)) continue;
        TPerson parent = Disque(a), enfant = Disque(b);
        TLienPers& place = parent.EstHomme() ? enfant.Enreg.Pere : enfant.Enreg.Mere;
        if (place.No != 0 || parent.RetourneRgEnf(b)) continue;
        const long autre = parent.EstHomme() ? enfant.Enreg.Mere.No : enfant.Enreg.Pere.No;
        Enfant(b, parent.EstHomme() ? a : autre, parent.EstHomme() ? autre : a);
        if (tire(2) == 0) Evenement(b, "NAISSANCE", date().c_str());
        break;
      }
      case 2: {  // lier deux conjoints
        if (a == b || !vivante(a) || !vivante(b) || Disque(a).RetourneRgConj(b)) continue;
        Conjoints(a, b);
        if (tire(2) == 0) Evenement(a, "UNION", date().c_str(), b);
        break;
      }
      case 3: {
        if (!vivante(a)) continue;
        TPerson p = Disque(a);
        p.SupprimeLienParent(tire(2) == 0);
        break;
      }
      case 4: {  // délier un choix de liens ; un refus n'écrit rien
        if (!vivante(a)) continue;
        TPerson p = Disque(a);
        const size_t taille = 2 + static_cast<size_t>(p.CompteNbConjoint() + p.CompteNbEnfant());
        std::unique_ptr<bool[]> choix(new bool[taille]);
        for (size_t k = 0; k < taille; ++k) choix[k] = tire(3) == 0;
        const auto avant = Fiches();
        try {
          p.SupprimeLien(choix.get());
        } catch (const ERqBase&) {
          ++refus;
          ASSERT_TRUE(Fiches() == avant) << "une fiche a changé";
        }
        break;
      }
      case 5: {
        if (!vivante(a) || tire(4) != 0) continue;  // pas trop de supprimés
        TPerson p = Disque(a);
        p.Suppression(tire(2) == 0);
        vivants.erase(std::find(vivants.begin(), vivants.end(), a));
        nouvelle();
        supprimes.push_back(a);
        break;
      }
      case 6: {
        TPerson p = Disque(supprimes.empty() || tire(2)
                               ? a
                               : supprimes[static_cast<size_t>(tire(static_cast<int>(supprimes.size())))]);
        p.RestaurationData();
        break;
      }
      case 7:
      case 8: {
        if (!vivante(a)) continue;
        TPerson p = Disque(a);
        p.EnregClassementEnfConj(tire(2) == 0);
        break;
      }
      case 9: {  // sur un graphe juste, la réparation ne trouve rien
        if (!vivante(a)) continue;
        TPerson p = Disque(a);
        const auto avant = Fiches();
        ASSERT_FALSE(p.VerifLienSysmetrique());
        ASSERT_TRUE(Fiches() == avant) << "une fiche a changé";
        break;
      }
    }
    ++faites[genre];
    const std::string ecart = EcartAuxRegles(Fic);
    ASSERT_EQ(ecart, "");
  }
  std::string bilan;
  for (int g = 0; g < 10; ++g) bilan += std::to_string(faites[g]) + " ";
  std::printf("opérations faites par genre : %s; refus : %d\n", bilan.c_str(), refus);
  // La suite a bien exercé chaque opération.
  for (int g = 0; g < 10; ++g) EXPECT_GT(faites[g], 10) << g;
  EXPECT_GT(refus, 0);
}

}  // namespace
}  // namespace rqbase
