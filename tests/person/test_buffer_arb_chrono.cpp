// TBufferisationArbChrono : chasse du plus petit numéro, rafraîchissement, lecture via le cache.
#include <gtest/gtest.h>

#include "dossier_essai.h"
#include "rqbase/person/buffer_arb_chrono.h"
#include "rqbase/dossier/gest_fic.h"

namespace rqbase {
namespace {

class CacheTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1);
    Fic = Gest->FicPersons();
    for (int i = 0; i < 5; ++i) {
      TPerson p(Fic);
      p.NouvelleFiche(-3);
      p.SetNom("NOM" + std::to_string(p.No()));
      p.Enregistrement();
    }
  }
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicPersons* Fic = nullptr;
};

TEST_F(CacheTest, PleinIlChasseLePlusPetitNumeroMemeLuEnDernier) {
  TBufferisationArbChrono cache(Fic, 3);
  cache.GetPerson(4, false);
  cache.GetPerson(5, false);
  cache.GetPerson(2, false);  // lu en dernier, mais le plus petit
  cache.GetPerson(6, false);
  EXPECT_FALSE(cache.Contient(2));
  EXPECT_TRUE(cache.Contient(4) && cache.Contient(5) && cache.Contient(6));
  EXPECT_EQ(cache.GetPerson(-7, false)->No(), 0);  // négatif autre que -2 : 0
  cache.Delete(0);
  cache.RazBuffers();
  EXPECT_EQ(cache.Taille(), 0u);
}

TEST_F(CacheTest, LectureViaLeCacheNeTouchePlusLeDisque) {
  TPerson p(Fic, 3, false, 0, true);
  EXPECT_STREQ(p.Enreg.Nom, "NOM3");
  // Le disque change sans passer par TPerson : le cache garde l'ancienne fiche.
  TEnregPersonne e;
  Fic->LitEnreg(3, e);
  std::strcpy(e.Nom, "DISQUE");
  Fic->EcritEnreg(3, e);
  EXPECT_STREQ(TPerson(Fic, 3, false, 0, true).Enreg.Nom, "NOM3");
  EXPECT_STREQ(TPerson(Fic, 3).Enreg.Nom, "DISQUE");
  // Un enregistrement par TPerson rafraîchit le double ; sans le drapeau, non.
  p.SetNom("NEUF");
  p.Enregistrement();
  EXPECT_STREQ(TPerson(Fic, 3, false, 0, true).Enreg.Nom, "NEUF");
  p.MajBuffer = false;
  p.SetNom("IGNORE");
  p.Enregistrement();
  EXPECT_STREQ(TPerson(Fic, 3, false, 0, true).Enreg.Nom, "NEUF");
  Fic->VideBufferPerson();
  EXPECT_STREQ(TPerson(Fic, 3, false, 0, true).Enreg.Nom, "IGNORE");
}

}  // namespace
}  // namespace rqbase
