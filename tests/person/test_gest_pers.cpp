// TPerson : lecture et écriture de l'enregistrement et de son débordement, jugement des
// fiches abîmées, questions et modifications des liens.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "personne_essai.h"
#include "dossier_essai.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/dossier/gest_fic.h"

namespace rqbase {
namespace {

class PersonTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(Gest->EnErreur());
    Fic = Gest->FicPersons();
  }
  long Ajoute(const char* nom, char sexe = 'M') { return essai::AjoutePersonne(Fic, nom, sexe); }
  // Écrase l'octet `decalage` de l'enregistrement `no` sur le disque.
  void AbimeOctet(long no, size_t decalage, char valeur) {
    TEnregPersonne e;
    Fic->LitEnreg(no, e);
    reinterpret_cast<char*>(&e)[decalage] = valeur;
    Fic->EcritEnreg(no, e);
  }
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicPersons* Fic = nullptr;
};

TEST_F(PersonTest, DixConjointsEtTrenteEnfantsTiennentSansDebordement) {
  const long no = Ajoute("DUPONT");
  TPerson p(Fic, no);
  for (int i = 0; i < 10; ++i) p.AjouteConj(100 + i);
  for (int i = 0; i < 30; ++i) p.AjouteEnf(200 + i, -1);
  p.Enregistrement();
  EXPECT_EQ(p.Enreg.Extension, 0);
  EXPECT_EQ(Gest->FicExtPersons()->NbEnreg(), 0);
  const TPerson relu(Fic, no);
  EXPECT_EQ(relu.CompteNbConjoint(), 10);
  EXPECT_EQ(relu.CompteNbEnfant(), 30);
}

TEST_F(PersonTest, CentCinquanteLiensPassentParLeDebordementEtReviennent) {
  const long no = Ajoute("MARTIN");
  TPerson p(Fic, no);
  for (int i = 0; i < 150; ++i) EXPECT_EQ(p.AjouteConj(1000 + i), i);
  EXPECT_EQ(p.AjouteConj(5000), -1);  // tout est pris
  for (int i = 0; i < 150; ++i) EXPECT_EQ(p.AjouteEnf(2000 + i, -1), i);
  EXPECT_EQ(p.AjouteEnf(5000, -1), -1);
  p.Enreg.Conjoints[149].Valeur = 77;
  p.Enregistrement();
  EXPECT_EQ(p.Enreg.Extension, 1);
  const TPerson relu(Fic, no);
  EXPECT_EQ(relu.Enreg.Extension, 1);
  for (int i = 0; i < 150; ++i) {
    EXPECT_EQ(int{relu.Enreg.Conjoints[i].No}, 1000 + i);
    EXPECT_EQ(int{relu.Enreg.Enfants[i].No}, 2000 + i);
  }
  EXPECT_EQ(int{relu.Enreg.Conjoints[149].Valeur}, 77);
  // Un enregistrement existant est réutilisé, même vidé.
  TPerson vide(Fic, no);
  vide.SetVectorEnfants({});
  for (int i = 0; i < 150; ++i) vide.Enreg.Conjoints[i] = TLienConj();
  vide.Enregistrement();
  EXPECT_EQ(vide.Enreg.Extension, 1);
  EXPECT_EQ(Gest->FicExtPersons()->NbEnreg(), 1);
}

TEST_F(PersonTest, SexeInconnuSeLitEtSEnregistreEnPointDInterrogation) {
  const long no = Ajoute("DURAND");
  AbimeOctet(no, 2, 'X');
  TPerson p(Fic, no);
  EXPECT_EQ(p.Enreg.Sexe, '?');
  p.Enregistrement();
  TEnregPersonne e;
  Fic->LitEnreg(no, e);
  EXPECT_EQ(e.Sexe, '?');
}

TEST_F(PersonTest, NomRempliJusquAuDernierOctetSeLitSurCentCaracteres) {
  const long no = Ajoute("A");
  TEnregPersonne e;
  Fic->LitEnreg(no, e);
  std::memset(e.Nom, 'N', sizeof e.Nom);
  e.Prenoms[0] = 0;
  Fic->EcritEnreg(no, e);
  const TPerson p(Fic, no);
  EXPECT_FALSE(p.FicheSupprimee());
  EXPECT_EQ(std::strlen(p.Enreg.Nom), 100u);
}

TEST_F(PersonTest, FicheAbimeeSeLitCommeUnePersonneSupprimeeVide) {
  const long no = Ajoute("BERNARD");
  const struct {
    size_t decalage;
    char valeur;
  } abimes[] = {
      {3 + 3, 0x7f},  // père immense
      {8 + 3, -1},    // mère négative
  };
  for (const auto& a : abimes) {
    AbimeOctet(no, a.decalage, a.valeur);
    const TPerson p(Fic, no);
    EXPECT_TRUE(p.FicheSupprimee());
    EXPECT_STREQ(p.Enreg.Nom, "");
    AbimeOctet(no, a.decalage, 0);
  }
  // Nom et prénoms sans zéro : le texte déborde et la fiche est jugée foireuse.
  TEnregPersonne e;
  Fic->LitEnreg(no, e);
  std::memset(e.Nom, 'N', sizeof e.Nom);
  std::memset(e.Prenoms, 'P', sizeof e.Prenoms);
  Fic->EcritEnreg(no, e);
  EXPECT_TRUE(TPerson(Fic, no).FicheSupprimee());
  EXPECT_FALSE(Gest->EnErreur());
}

TEST_F(PersonTest, LienHorsFichierCasseLaFicheQueRepareFicheEfface) {
  const long no = Ajoute("PETIT");
  TPerson p(Fic, no);
  p.AjouteConj(1);
  p.AjouteConj(900);
  p.AjouteEnf(1, -1);
  p.AjouteEnf(901, -1);
  p.AjouteEnf(-5, -1);
  EXPECT_TRUE(p.FicheCassee());
  p.RepareFiche();
  EXPECT_FALSE(p.FicheCassee());
  EXPECT_EQ(int{p.Enreg.Conjoints[0].No}, 1);
  EXPECT_EQ(int{p.Enreg.Conjoints[1].No}, 0);  // effacé, pas tassé
  EXPECT_EQ(int{p.Enreg.Enfants[2].No}, -5);   // les négatifs ne sont pas testés
}

TEST_F(PersonTest, ModificationsDesTablesDeLiens) {
  TPerson p(Fic);
  EXPECT_EQ(p.AjouteConj(0), -1);
  EXPECT_EQ(p.CompteNbConjoint(), 0);
  for (long c : {11, 12, 13}) p.AjouteConj(c);
  EXPECT_EQ(p.AjouteConj(12), 1);  // déjà là
  EXPECT_EQ(p.RetourneRgConj(13), 3);
  EXPECT_TRUE(p.DeplacerConjVersPos(13, 9));  // au-delà du compte : en tête
  EXPECT_EQ(int{p.Enreg.Conjoints[0].No}, 13);
  EXPECT_TRUE(p.DeplacerConjVersPos(13, 3));
  EXPECT_EQ(int{p.Enreg.Conjoints[2].No}, 13);
  EXPECT_FALSE(p.DeplacerConjVersPos(13, 3));

  for (long e : {21, 22, 23}) p.AjouteEnf(e, -1);
  EXPECT_EQ(p.AjouteEnf(22, -1), 0);  // voulu : son index moins un
  // Voulu : c'est la table des conjoints qui bouge, bornée par le compte des enfants.
  EXPECT_FALSE(p.DeplacerEnfantVersPos(21, 3));
  EXPECT_TRUE(p.DeplacerEnfantVersPos(13, 1));
  std::vector<long> enfants;
  p.GetVectorEnfants(enfants);
  EXPECT_EQ(enfants, (std::vector<long>{21, 22, 23}));
  EXPECT_EQ(int{p.Enreg.Conjoints[0].No}, 13);
  EXPECT_TRUE(p.DeplaceEnfantVersBenjamin(21));
  EXPECT_FALSE(p.DeplaceEnfantVersBenjamin(23));
  EXPECT_TRUE(p.DeplaceEnfantVersAine(23));
  p.GetVectorEnfants(enfants);
  EXPECT_EQ(enfants, (std::vector<long>{22, 23, 21}));

  bool change = false;
  p.SupprimeEnfant(23, &change);
  EXPECT_TRUE(change);
  EXPECT_EQ(p.FirstNullChild(), 1);
  EXPECT_TRUE(p.RecompacteEnfant());
  EXPECT_FALSE(p.RecompacteEnfant());
  long no = 21;
  int rang = 0;
  EXPECT_TRUE(p.IsParentOf(no, rang));
  EXPECT_EQ(rang, 1);
  p.SupprimeConjoint(12, nullptr);
  EXPECT_EQ(p.CompteNbConjointHors(11), 1);
  EXPECT_EQ(p.GetFirstNoConj(), 0);
  EXPECT_EQ(p.RechRefConj(99).No, 0);
  p.SetLienConj(TLienConj(13, 4, 8));
  EXPECT_EQ(int{p.RechRefConj(13).Valeur}, 8);
}

TEST_F(PersonTest, EnfantsAjoutesRemontentSelonLeRangDuConjoint) {
  const long pere = Ajoute("PERE");
  const long m1 = Ajoute("MERE1", 'F'), m2 = Ajoute("MERE2", 'F');
  auto enfant = [&](long mere) {
    TPerson e(Fic);
    e.NouvelleFiche(-3);
    e.Enreg.Pere = TLienPers(pere);
    e.Enreg.Mere = TLienPers(mere);
    e.Enregistrement();
    return e.No();
  };
  const long a2 = enfant(m2), b1 = enfant(m1), c0 = enfant(0);
  TPerson p(Fic, pere);
  p.AjouteConj(m1);
  p.AjouteConj(m2);
  p.AjouteEnf(a2, m2);
  EXPECT_EQ(p.AjouteEnf(b1, m1), 0);  // enfant du premier conjoint : passe devant
  EXPECT_EQ(p.AjouteEnf(c0, 0), 0);   // sans autre parent : remonte jusqu'en haut
  std::vector<long> enfants;
  p.GetVectorEnfants(enfants);
  EXPECT_EQ(enfants, (std::vector<long>{c0, b1, a2}));
  EXPECT_EQ(p.NoAutreParent(0), 0);
  EXPECT_EQ(TPerson(Fic, b1, false, 0, true).NoAutreParent(pere), m1);
  EXPECT_EQ(TPerson(Fic, b1, false, 0, true).NoAutreParent(m1), pere);
  EXPECT_EQ(TPerson(Fic, b1, false, 0, true).NoAutreParent(m2), 0);
  // Voulu : 0 n'est pas écarté ; l'enfant sans père rend sa mère pour NoAutreParent(0).
  TPerson sansPere(Fic, b1);
  sansPere.Enreg.Pere = TLienPers();
  EXPECT_EQ(sansPere.NoAutreParent(0), m1);
}

TEST_F(PersonTest, LectureParLeCacheGardeLeDrapeauDeRafraichissementDeLAppelant) {
  const long no = Ajoute("AVANT");
  TPerson p(Fic);
  p.MajBuffer = false;
  p.Lecture(no, false, 0, true);  // la personne entre dans le cache
  p.SetNom("APRES");
  p.Enregistrement();
  // Le double du cache n'est pas rafraîchi : la lecture par le cache rend l'ancien nom.
  EXPECT_STREQ(TPerson(Fic, no, false, 0, true).Enreg.Nom, "AVANT");
  EXPECT_STREQ(TPerson(Fic, no).Enreg.Nom, "APRES");
  p.MajBuffer = true;
  p.Enregistrement();
  EXPECT_STREQ(TPerson(Fic, no, false, 0, true).Enreg.Nom, "APRES");
}

TEST_F(PersonTest, DossierEnLectureSeuleOuEnErreurNEcritRien) {
  const long no = Ajoute("LEROY");
  Gest->FixeErreur(true);
  TPerson p(Fic, no);
  EXPECT_STREQ(p.Enreg.Nom, "");  // en erreur : fiche vide
  Gest->FixeErreur(false);
  p.Lecture(no);
  p.SetNom("AUTRE");
  Gest->SetReadOnly(true);
  p.Enregistrement();
  Gest->SetReadOnly(false);
  EXPECT_STREQ(TPerson(Fic, no).Enreg.Nom, "LEROY");
  EXPECT_TRUE(TPerson(Fic, Fic->NbPersEffective() + 1).FicheVide());
}

TEST_F(PersonTest, TemoinAvecUnLienDevientPersonne) {
  const long no = Ajoute("T");
  TPerson p(Fic, no);
  p.Enreg.Type = 'T';
  p.Enregistrement();
  EXPECT_EQ(TPerson(Fic, no).Enreg.Type, 'T');
  p.AjouteConj(1);
  p.Enregistrement();
  EXPECT_EQ(TPerson(Fic, no).Enreg.Type, 'P');
}

}  // namespace
}  // namespace rqbase
