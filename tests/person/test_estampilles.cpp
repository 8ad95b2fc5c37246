// TPerson : tampons de date (création, modification, notification), identifiant d'échange
// "ID_PERS" et origine des données.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {
namespace {

class EstampillesTest : public testing::Test {
 protected:
  void SetUp() override {
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true);
    ASSERT_FALSE(Gest->EnErreur());
    Fic = Gest->FicPersons();
    TPerson p(Fic);
    p.NouvelleFiche(-3);
    p.SetNom("DURAND");
    p.Enregistrement();
    No = p.No();
  }
  // La valeur du premier champ simple de ce libellé, relu du disque ; "<absent>" sinon.
  std::string Valeur(const char* libelle) {
    TPerson p(Fic, No, true);
    TChpsSimple::TEnreg c;
    const int rg = p.GetRgChpsSimple(libelle);
    if (rg == 0 || !p.ChpsSimpleNo(rg, &c)) return "<absent>";
    return c.Donnee;
  }
  int Compte(const char* libelle) {
    TPerson p(Fic, No, true);
    int n = 0;
    for (int rg = p.GetRgChpsSimple(libelle); rg > 0; rg = p.GetRgChpsSimple(libelle, 0, rg)) ++n;
    return n;
  }

  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicPersons* Fic = nullptr;
  long No = 0;
};

TEST_F(EstampillesTest, CreationPuisModification) {
  TPerson p(Fic, No);
  int rappels = 0;
  p.OnMajDateModif = [&](TPerson&) { ++rappels; };
  // Les troisième et sixième caractères deviennent des '/'.
  p.MajDateJourDDMF_DCF(false, "01-02-2020 10:11:12");
  p.Enregistrement();
  EXPECT_EQ(Valeur("DCF"), "01/02/2020 10:11:12");
  EXPECT_EQ(Valeur("DDMF"), "01/02/2020 10:11:12");
  EXPECT_EQ(rappels, 1);

  TPerson q(Fic, No);
  q.MajDateJourDDMF_DCF(false, "03/04/2021 05:06:07");
  q.Enregistrement();
  EXPECT_EQ(Valeur("DCF"), "01/02/2020 10:11:12");  // la création ne bouge plus
  EXPECT_EQ(Valeur("DDMF"), "03/04/2021 05:06:07");
  EXPECT_EQ(Compte("DCF"), 1);
  EXPECT_EQ(Compte("DDMF"), 1);

  // Création seule : ni modification ni rappel.
  TPerson neuve(Fic);
  neuve.NouvelleFiche(-3);
  neuve.Enregistrement();
  TPerson r(Fic, neuve.No());
  r.OnMajDateModif = [&](TPerson&) { ++rappels; };
  r.MajDateJourDDMF_DCF(true, "");
  r.Enregistrement();
  TPerson relue(Fic, neuve.No(), true);
  EXPECT_GT(relue.GetRgChpsSimple("DCF"), 0);
  EXPECT_EQ(relue.GetRgChpsSimple("DDMF"), 0);
  EXPECT_EQ(rappels, 1);
  // Sans date donnée : le moment présent, au format jj/mm/aaaa hh:nn:ss.
  TChpsSimple::TEnreg c;
  relue.ChpsSimpleNo(relue.GetRgChpsSimple("DCF"), &c);
  EXPECT_THAT(c.Donnee, testing::MatchesRegex("[0-3][0-9]/[01][0-9]/20[0-9][0-9] [0-2][0-9]:[0-5][0-9]:[0-5][0-9]"));
}

TEST_F(EstampillesTest, DateDeNotification) {
  const TDateTime d = EncodeDateHeure(1999, 12, 31, 23, 59, 58);
  TPerson p(Fic, No);
  p.MajDateJourDDNOTIF(&d);
  p.Enregistrement();
  EXPECT_EQ(Valeur("DDNOTIF"), "31/12/1999 23:59:58");
  const TDateTime e = EncodeDateHeure(2000, 1, 2, 3, 4, 5);
  TPerson q(Fic, No);
  q.MajDateJourDDNOTIF(&e);
  q.Enregistrement();
  EXPECT_EQ(Valeur("DDNOTIF"), "02/01/2000 03:04:05");
  EXPECT_EQ(Compte("DDNOTIF"), 1);
}

TEST_F(EstampillesTest, IdentifiantDEchangeCreeUneFoisEtGarde) {
  TDefChpsCs* catalogue = Gest->GetDefChpsCs();
  ASSERT_NE(catalogue, nullptr);
  EXPECT_FALSE(catalogue->IsChampExist("ID_PERS"));
  TPerson p(Fic, No);
  EXPECT_EQ(p.RetourneIdPers(false), "");
  // Le catalogue a reçu sa définition, et l'a écrite : un catalogue relu la connaît.
  EXPECT_TRUE(catalogue->IsChampExist("ID_PERS"));
  EXPECT_TRUE(TDefChpsCs(Gest.get(), false, catalogue->CheminCatalogue()).IsChampExist("ID_PERS"));

  const std::string id = p.RetourneIdPers(true);
  ASSERT_EQ(id.size(), 28u);
  EXPECT_EQ(id.substr(0, Gest->GetIdGenea().size()), Gest->GetIdGenea());
  EXPECT_THAT(id.substr(20), testing::MatchesRegex("[0-9A-F]{8}"));
  EXPECT_TRUE(p.VerifIdPersOk(id));
  EXPECT_EQ(Valeur("ID_PERS"), id);
  // Relu, il ne change plus.
  EXPECT_EQ(TPerson(Fic, No).RetourneIdPers(true), id);
  EXPECT_EQ(Compte("ID_PERS"), 1);
  EXPECT_TRUE(Gest->IsIDPersExists(id));
}

TEST_F(EstampillesTest, IdentifiantMalFormeEstRemplace) {
  for (const char* mauvais : {"trop court", "AAAAAAAAAAAAAAAAAAAA 1234567", "AAAAAAAAAAAAAAAAAAAA,1234567"}) {
    SCOPED_TRACE(mauvais);
    {
      TPerson p(Fic, No, true);
      p.SupprChampsMatchLibelle("ID_PERS");
      TChpsSimple::TEnreg c;
      c.SetLibelle("ID_PERS");
      c.SetDonnee(mauvais);
      c.NoPersA = No;
      p.AjoutChpsSimple(&c, 0);
      p.Enregistrement();
    }
    TPerson q(Fic, No);
    EXPECT_EQ(q.RetourneIdPers(false), "");
    EXPECT_EQ(q.GetRgChpsSimple("ID_PERS"), 0);
    const std::string id = q.RetourneIdPers(true);
    EXPECT_EQ(id.size(), 28u);
    EXPECT_EQ(Valeur("ID_PERS"), id);
    EXPECT_EQ(Compte("ID_PERS"), 1);
  }
}

TEST_F(EstampillesTest, TirageEtVerification) {
  TPerson p(Fic, No);
  std::set<std::string> vus;
  for (int i = 0; i < 200; ++i) {
    const std::string t = p.GenereIdPersUnique();
    ASSERT_THAT(t, testing::MatchesRegex("[0-9A-F]{8}"));
    EXPECT_LT(std::stoul(t, nullptr, 16), 99999u);
    vus.insert(t);
  }
  EXPECT_GT(vus.size(), 150u);  // des tirages, pas une constante
  EXPECT_FALSE(p.VerifIdPersOk(""));
  EXPECT_FALSE(
      p.VerifIdPersOk("0123456789ABCDEF0123"
                      "00000001"));
  EXPECT_TRUE(p.VerifIdPersOk(Gest->GetIdGenea() + "00000001"));
  // Sans dossier, aucune vérification ne passe.
  TPerson seule(static_cast<TFicPersons*>(nullptr));
  EXPECT_FALSE(seule.VerifIdPersOk(Gest->GetIdGenea()));
}

TEST_F(EstampillesTest, OrigineDesDonneesUneSeuleFois) {
  TPerson p(Fic, No);
  p.AddOrigineDataChps();
  p.AddOrigineDataChps();
  p.Enregistrement();
  EXPECT_EQ(Compte("ORIGINE_DONNEE"), 1);
  EXPECT_EQ(Valeur("ORIGINE_DONNEE"), "Saisie directe");
}

}  // namespace
}  // namespace rqbase
