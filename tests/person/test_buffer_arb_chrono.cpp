// TBufferisationArbChrono : chasse du plus petit numéro, rafraîchissement, lecture via le cache.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "dossier_essai.h"
#include "rqbase/person/buffer_arb_chrono.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/platform/fichier.h"

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


TEST_F(CacheTest, ChasseSurUneSuiteFixeAvecOublisEtRetours) {
  TBufferisationArbChrono cache(Fic, 3);
  auto contenu = [&] {
    std::vector<long> v;
    for (long no = -2; no <= 7; ++no)
      if (cache.Contient(no)) v.push_back(no);
    return v;
  };
  for (long no : {5, 1, 3}) cache.GetPerson(no, false);
  cache.Delete(1);  // oublié : ce n'est plus lui qui partira
  cache.GetPerson(4, false);
  EXPECT_EQ(contenu(), (std::vector<long>{3, 4, 5}));
  cache.GetPerson(2, false);  // plein : 3 part, puis 2 entre
  EXPECT_EQ(contenu(), (std::vector<long>{2, 4, 5}));
  cache.GetPerson(1, false);  // 1 revient : 2 part
  EXPECT_EQ(contenu(), (std::vector<long>{1, 4, 5}));
  cache.GetPerson(-2, false);  // l'en-tête est le plus petit numéro
  EXPECT_EQ(contenu(), (std::vector<long>{-2, 4, 5}));
  cache.GetPerson(0, false);
  EXPECT_EQ(contenu(), (std::vector<long>{0, 4, 5}));
  // Des centaines d'oublis et de retours du même numéro : la chasse reste la même.
  for (int i = 0; i < 500; ++i) {
    cache.Delete(4);
    cache.GetPerson(4, false);
  }
  cache.GetPerson(6, false);
  EXPECT_EQ(contenu(), (std::vector<long>{4, 5, 6}));
  cache.GetPerson(7, false);
  EXPECT_EQ(contenu(), (std::vector<long>{5, 6, 7}));
  EXPECT_EQ(cache.Taille(), 3u);
  // Une personne donnée au cache : plein, le plus petit part d'abord, même si c'est elle.
  cache.AjoutePersonne(new TPerson(Fic, 3));
  EXPECT_EQ(contenu(), (std::vector<long>{3, 6, 7}));
  cache.AjoutePersonne(new TPerson(Fic, 1));
  EXPECT_EQ(contenu(), (std::vector<long>{1, 6, 7}));
}

TEST_F(CacheTest, PlaceRepriseSeLitCommeUnePersonneNeuve) {
  TBufferisationArbChrono cache(Fic, 2);
  TPerson* un = cache.GetPerson(1, false);
  // Le double reçoit des rappels et un refus de rafraîchissement par Update.
  TPerson p(Fic, 1);
  int appels = 0;
  p.OnSupprPere = [&](TPerson&) { ++appels; };
  p.MajBuffer = false;
  ASSERT_EQ(cache.Update(p, true), un);
  EXPECT_FALSE(un->MajBuffer);
  EXPECT_EQ(cache.GetPerson(2, false), cache.GetPerson(2, false));  // trouvé : le même objet
  EXPECT_EQ(cache.GetPerson(1, false), un);
  // 3 chasse 1 : la place de 1 sert à 3, sans rien garder de 1.
  TPerson* trois = cache.GetPerson(3, false);
  EXPECT_FALSE(cache.Contient(1));
  EXPECT_EQ(trois->No(), 3);
  EXPECT_STREQ(trois->Enreg.Nom, "NOM3");
  EXPECT_TRUE(trois->MajBuffer);
  EXPECT_FALSE(trois->OnSupprPere);
  // Une lecture de toutes les personnes par un cache d'une place donne chaque fiche.
  TBufferisationArbChrono petit(Fic, 1);
  for (long no : {5, 6, 4, 2, 3, 5, 0})
    EXPECT_STREQ(petit.GetPerson(no, false)->Enreg.Nom, no == 0 ? "" : ("NOM" + std::to_string(no)).c_str()) << no;
  EXPECT_EQ(appels, 0);
}

TEST_F(CacheTest, ParcoursMontantEtDescendantDeDeuxCentsNumeros) {
  // Au-delà du compte du fichier, les numéros se lisent vides : seule la chasse compte ici.
  auto present = [](const TBufferisationArbChrono& c, long de, long a) {
    for (long no = de; no <= a; ++no)
      if (!c.Contient(no)) return false;
    return true;
  };
  auto absent = [](const TBufferisationArbChrono& c, long de, long a) {
    for (long no = de; no <= a; ++no)
      if (c.Contient(no)) return false;
    return true;
  };
  TBufferisationArbChrono montant(Fic, 50);
  for (long no = 1; no <= 200; ++no) montant.GetPerson(no, false);
  EXPECT_TRUE(absent(montant, 1, 150));
  EXPECT_TRUE(present(montant, 151, 200));
  // Descendant : chaque numéro chasse le précédent, plus petit que tous les autres.
  TBufferisationArbChrono descendant(Fic, 50);
  for (long no = 200; no >= 1; --no) descendant.GetPerson(no, false);
  EXPECT_TRUE(present(descendant, 1, 1));
  EXPECT_TRUE(absent(descendant, 2, 151));
  EXPECT_TRUE(present(descendant, 152, 200));
  EXPECT_EQ(descendant.Taille(), 50u);
  // Un numéro sur deux oublié, puis les autres : l'index se vide sans en perdre un.
  for (long no = 152; no <= 200; no += 2) descendant.Delete(no);
  EXPECT_TRUE(present(descendant, 153, 153) && present(descendant, 199, 199));
  EXPECT_TRUE(absent(descendant, 152, 152) && absent(descendant, 200, 200));
  for (long no = 1; no <= 200; ++no) descendant.Delete(no);
  EXPECT_EQ(descendant.Taille(), 0u);
  EXPECT_TRUE(absent(descendant, -2, 300));
  for (long no = 300; no > 250; --no) descendant.GetPerson(no, false);
  EXPECT_TRUE(present(descendant, 251, 300));
  EXPECT_EQ(descendant.GetPerson(4, false)->No(), 4);
  EXPECT_TRUE(absent(descendant, 251, 251) && present(descendant, 252, 300));
}

TEST_F(CacheTest, NumerosEparsLusDansLOrdreLesPlusGrandsRestent) {
  // 3 000 numéros épars (pas de 7 919 modulo 100 003), lus du plus petit au plus grand par
  // un cache de 1 000 places : restent exactement les 1 000 plus grands, même quand leurs
  // cases de l'index se touchent.
  std::vector<long> numeros;
  for (long i = 1; i <= 3000; ++i) numeros.push_back(i * 7919 % 100003);
  std::sort(numeros.begin(), numeros.end());
  TBufferisationArbChrono cache(Fic, 1000);
  for (long no : numeros) cache.GetPerson(no, false);
  EXPECT_EQ(cache.Taille(), 1000u);
  size_t presents = 0;
  for (size_t i = 0; i < numeros.size(); ++i) {
    EXPECT_EQ(cache.Contient(numeros[i]), i >= 2000) << numeros[i];
    presents += cache.Contient(numeros[i]);
  }
  EXPECT_EQ(presents, 1000u);
  // Chaque numéro présent rend son objet, sans relecture.
  TPerson* p = cache.GetPerson(numeros.back(), false);
  EXPECT_EQ(cache.GetPerson(numeros.back(), false), p);
  EXPECT_EQ(p->No(), numeros.back());
}

TEST_F(CacheTest, FormeBruteEtFormeEntiereSeLisentCommeLeDisque) {
  TBufferisationArbChrono cache(Fic, 4);
  // Brute : la lecture par le cache donne la fiche du disque, sans les rappels de l'appelant.
  TPerson lu(Fic);
  lu.OnSupprPere = [](TPerson&) {};
  cache.LitPersonne(3, false, lu);
  const TPerson disque(Fic, 3);
  EXPECT_EQ(lu.No(), 3);
  EXPECT_STREQ(lu.Enreg.Nom, disque.Enreg.Nom);
  EXPECT_FALSE(lu.OnSupprPere);
  EXPECT_EQ(lu.Evens(), nullptr);
  // Le disque change sans passer par le cache : la copie en cache reste celle lue (comme un
  // TPerson en cache l'aurait fait), jusqu'à Update qui la remplace par la forme entière.
  TPerson change(Fic, 3);
  change.SetNom("CHANGE");
  change.MajBuffer = false;
  change.Enregistrement();
  cache.LitPersonne(3, false, lu);
  EXPECT_STREQ(lu.Enreg.Nom, "NOM3");
  ASSERT_NE(cache.Update(change, true), nullptr);
  cache.LitPersonne(3, false, lu);
  EXPECT_STREQ(lu.Enreg.Nom, "CHANGE");
  EXPECT_EQ(cache.GetPerson(3, false), cache.GetPerson(3, false));
  // Au-delà du fichier ou illisible : une fiche vide du numéro demandé.
  cache.LitPersonne(99, false, lu);
  EXPECT_EQ(lu.No(), 99);
  EXPECT_STREQ(lu.Enreg.Nom, "");
  // Avec complément : les listes viennent avec la personne, et restent en cache.
  cache.LitPersonne(2, true, lu);
  ASSERT_NE(lu.Evens(), nullptr);
  EXPECT_NE(cache.GetPerson(2, false)->Evens(), nullptr);
  // Une fiche foireuse sur le disque se lit supprimée et vide par les deux chemins.
  TEnregPersonne brut{};
  ASSERT_TRUE(Fic->LitEnreg(4, brut));
  brut.Pere.No = 1000;
  Fic->EcritEnreg(4, brut);
  TBufferisationArbChrono neuf(Fic, 4);
  neuf.LitPersonne(4, true, lu);
  EXPECT_TRUE(lu.FicheSupprimee());
  EXPECT_STREQ(lu.Enreg.Nom, "");
  EXPECT_EQ(lu.Evens(), nullptr);
  EXPECT_TRUE(TPerson(Fic, 4).FicheSupprimee());
}

// Un parcours par le cache lit le fichier par blocs : chaque fiche y est celle du disque, une
// fiche écrite pendant le parcours se lit neuve, et un fichier coupé au milieu d'une fiche se
// lit par blocs exactement comme fiche par fiche (le bloc ne passe pas le compte des fiches).
TEST_F(CacheTest, ParcoursParBlocsCommeFicheParFiche) {
  for (int i = 0; i < 145; ++i) {
    TPerson p(Fic);
    p.NouvelleFiche(-3);
    p.SetNom("NOM" + std::to_string(p.No()));
    p.Enregistrement();
  }
  const long n = Fic->NbPersEffective();
  ASSERT_GE(n, 150);
  TBufferisationArbChrono cache(Fic, 8);
  TPerson lu(Fic);
  for (long no = 1; no <= n; ++no) {
    if (no == 70) {  // le bloc qui couvre 66 à 129 est déjà lu
      TPerson change(Fic, 80);
      change.SetNom("CHANGE");
      change.MajBuffer = false;
      change.Enregistrement();
    }
    cache.LitPersonne(no, false, lu);
    ASSERT_STREQ(lu.Enreg.Nom, TPerson(Fic, no).Enreg.Nom) << no;
    if (no >= 7) ASSERT_STREQ(lu.Enreg.Nom, no == 80 ? "CHANGE" : ("NOM" + std::to_string(no)).c_str()) << no;
  }
  Fic->Flush();
  Gest.reset();

  // Le fichier coupé au milieu de la fiche 120 : l'en-tête annonce toujours toutes les fiches.
  const auto prs = std::filesystem::path(Temp.Prs());
  std::filesystem::resize_file(prs, std::filesystem::file_size(prs) - (n - 120) * 644 - 300);
  auto parcours = [&](bool viaCache) {
    TGestFichier gest(Temp.Prs(), false, false, false, false, 1);
    TFicPersons* fic = gest.FicPersons();
    std::vector<std::string> vu;
    TPerson p(fic, -3);
    for (long no = 1; no <= fic->NbPersEffective() + 2; ++no) {
      p.Lecture(no, false, 0, viaCache);
      vu.push_back(std::string(p.Enreg.Nom) + (gest.EnErreur() ? "!" : ""));
    }
    return vu;
  };
  // Un disque qui rend des lectures courtes : le bloc court ne juge pas la fiche demandée, lue
  // seule comme sans cache (une fiche à moitié venue se lit, sans erreur).
  {
    TGestFichier gest(Temp.Prs(), false, false, false, false, 1);
    TBufferisationArbChrono court(gest.FicPersons(), 8);
    TFichierBrut::Pannes().LectureCourteApres(0, ".prs");
    TPerson p(gest.FicPersons());
    for (long no = 7; no <= 40; ++no) {
      court.LitPersonne(no, false, p);
      ASSERT_STREQ(p.Enreg.Nom, ("NOM" + std::to_string(no)).c_str()) << no;
    }
    TFichierBrut::Pannes().Raz();
    EXPECT_FALSE(gest.EnErreur());
  }
  const std::vector<std::string> direct = parcours(false);
  ASSERT_GE(direct.size(), 121u);
  EXPECT_EQ(direct[118], "NOM119");
  // La fiche coupée n'est plus comptée : au-delà du compte, une fiche vide, sans erreur.
  EXPECT_EQ(direct[119], "");
  EXPECT_EQ(parcours(true), direct);
}

}  // namespace
}  // namespace rqbase
