// Chaînes partagées : le fichier de 114 octets, sa table triée, ses trois numérotations.
// Les fichiers vivent dans un disque en mémoire : chaque test part d'un disque vide.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "rqbase/places/gestduplicat.h"
#include "rqbase/places/texte_lieu.h"
#include "rqbase/platform/fichier_memoire.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

using testing::ElementsAre;
using testing::StrEq;
using testing::ThrowsMessage;

constexpr const char* kLie = "/m/Essai.rq2/Essai.lie";

class DupliTest : public testing::Test {
 protected:
  std::unique_ptr<TFicDupli> Ouvre(bool creation = false) {
    return std::make_unique<TFicDupli>(&Contexte, tfLie, creation);
  }
  std::string Fichier() const {
    const auto o = Disque.Contenu(kLie);
    return std::string(o.begin(), o.end());
  }
  void Pose(const std::string& octets) { Disque.Pose(kLie, TDisqueMemoire::TOctets(octets.begin(), octets.end())); }
  static long Ajoute(TFicDupli& f, const char* ville, const char* code = "", const char* region = "",
                     const char* pays = "", int* position = nullptr) {
    TEltDupChn e(0, ville, code, region, pays);
    return f.Cherche(&e, true, position);
  }
  // Les communes dans l'ordre de la table, supprimées comprises.
  static std::vector<std::string> Ordre(TFicDupli& f) {
    std::vector<std::string> r;
    TEltDupChn e;
    for (long p = 0; p < f.Table()->GetNbElt(); ++p) {
      f.Table()->Lit(p, e);
      r.push_back(e.Ville);
    }
    return r;
  }

  TDisqueMemoire Disque;
  TDisqueMemoire::TInstallation Installation{Disque};
  TContexteDossier Contexte{"/m/Essai.rq2/Essai.prs"};
};

TEST_F(DupliTest, FichierNeufPuisValeursNumeroteesEtRangees) {
  {
    auto f = Ouvre(true);
    EXPECT_EQ(Fichier().size(), 114u);
    EXPECT_EQ(Fichier().substr(0, 2), std::string("0\0", 2));
    EXPECT_EQ(Fichier()[113], 'N');
    int pos = -2;
    EXPECT_EQ(Ajoute(*f, "Lyon", "69", "", "France", &pos), 1);
    EXPECT_EQ(pos, 0);
    EXPECT_EQ(Ajoute(*f, "Amiens", "80", "", "", &pos), 2);
    EXPECT_EQ(pos, 0);
    // Deux graphies qui ne diffèrent que par l'accent : deux valeurs, voisines dans l'ordre.
    EXPECT_EQ(Ajoute(*f, "Évreux"), 3);
    EXPECT_EQ(Ajoute(*f, "Evreux"), 4);
    EXPECT_EQ(Ajoute(*f, "Lyon", "69", "", "France"), 1);  // déjà là : même numéro
    EXPECT_THAT(Ordre(*f), ElementsAre("Amiens", "Evreux", "Évreux", "Lyon"));
    EXPECT_EQ(f->NbFiches(), 4);
  }
  // Relu : l'en-tête décimal, la table, les index.
  EXPECT_EQ(Fichier().size(), 5u * 114);
  EXPECT_EQ(std::string(Fichier().c_str()), "4");
  auto f = Ouvre();
  EXPECT_EQ(f->NbFiches(), 4);
  EXPECT_THAT(Ordre(*f), ElementsAre("Amiens", "Evreux", "Évreux", "Lyon"));
  TFicheDupli lyon(f.get(), 1, true);
  EXPECT_STREQ(lyon.Elt.Pays, "France");
  EXPECT_EQ(f->RangDeNumero(1), 3);
  TEltDupChn cherche(0, "Amiens", "80");
  EXPECT_EQ(f->Cherche(&cherche, false), 2);
  TEltDupChn absent(0, "Paris");
  int pos = 0;
  EXPECT_EQ(f->Cherche(&absent, false, &pos), 0);
  EXPECT_EQ(pos, -1);
  EXPECT_EQ(f->NbFiches(), 4);
}

TEST_F(DupliTest, SuppressionPuisRetourSousLeMemeNumero) {
  auto f = Ouvre(true);
  for (const char* v : {"Brest", "Caen", "Dole"}) Ajoute(*f, v);
  f->SupprimeElt(1);  // Caen, rang 1
  EXPECT_THAT(f->ClassementSansSuppr(), ElementsAre(0, 2));
  EXPECT_EQ(f->RangDeNumero(2), -1);
  EXPECT_EQ(Fichier()[2 * 114 + 113], 'O');
  // Toujours lisible par qui tient son numéro.
  EXPECT_STREQ(TFicheDupli(f.get(), 2, true).Elt.Ville, "Caen");
  f.reset();
  f = Ouvre();
  EXPECT_THAT(f->ClassementSansSuppr(), ElementsAre(0, 2));
  int pos = -2;
  EXPECT_EQ(Ajoute(*f, "Caen", "", "", "", &pos), 2);
  EXPECT_EQ(pos, 1);
  EXPECT_EQ(Fichier()[2 * 114 + 113], 'N');
  EXPECT_EQ(f->NbFiches(), 3);
}

TEST_F(DupliTest, CommuneEtRegionDansLesChampsFixes) {
  const std::string commune(30, 'c'), region = std::string(20, 'r') + std::string(10, 's');
  TEltDupChn e(0, commune.c_str(), "", region.c_str(), "France");
  EXPECT_EQ(std::strlen(e.Ville), 50u);
  EXPECT_EQ(std::string(e.Ville), commune + ";" + std::string(19, 'r'));
  EXPECT_EQ(std::string(e.Pays), "France;r" + std::string(10, 's'));
  std::string v, r, p;
  e.GetVilleRegionPays(v, r, p);
  EXPECT_EQ(v, commune);
  EXPECT_EQ(r, region);
  EXPECT_EQ(p, "France");
  // Une commune de 49 caractères perd son séparateur : voulu.
  TEltDupChn limite(0, std::string(49, 'x').c_str(), "", "R", "");
  EXPECT_EQ(std::string(limite.Ville), std::string(49, 'x') + "R");
  // Plus de 50 caractères : la région est laissée.
  TEltDupChn longue(0, std::string(60, 'y').c_str(), "", "R", "");
  EXPECT_EQ(std::string(longue.Ville), std::string(50, 'y'));
  // Sans région, 300 caractères en mémoire.
  TEltDupChn seule(0, std::string(320, 'z').c_str());
  EXPECT_EQ(std::strlen(seule.Ville), 300u);
  std::string code, maj;
  TEltDupChn accents(0, "Saint-Étienne", "42", "Rhône-Alpes", "");
  accents.Fixe(maj, &code, &r, nullptr, true);
  EXPECT_EQ(maj, "SAINT-ETIENNE");
  EXPECT_EQ(r, "RHONE-ALPES");
  EXPECT_STREQ(accents.VilleMaj, "SAINT-ETIENNE;RHONE-ALPES");
}

TEST_F(DupliTest, OrdreParCommuneAvantLaRegion) {
  EXPECT_LT(TEltDupChn::MultiChnCmp("ab;z", "abc"), 0);   // "ab" avant "abc" malgré ';' > 'c'
  EXPECT_GT(TEltDupChn::MultiChnCmp("abd;a", "abc;z"), 0);
  EXPECT_LT(TEltDupChn::MultiChnCmp("ab;a", "ab;b"), 0);  // même commune : le texte entier
  EXPECT_EQ(TEltDupChn::MultiChnCmp(";x", ";x"), 0);
  EXPECT_LT(TEltDupChn::MultiChnCmp(";b", "a"), 0);       // premier morceau vide : octets
  auto f = Ouvre(true);
  Ajoute(*f, "Paris", "", "Zzz");
  Ajoute(*f, "Parisot");
  Ajoute(*f, "Paris", "", "Aaa");
  EXPECT_THAT(Ordre(*f), ElementsAre("Paris;Aaa", "Paris;Zzz", "Parisot"));
}

TEST_F(DupliTest, FichierCoupeEtEnTetesAbimes) {
  {
    auto f = Ouvre(true);
    for (int i = 1; i <= 10; ++i) Ajoute(*f, ("V" + std::to_string(i)).c_str());
  }
  // Coupé au milieu de l'enregistrement 7 : six valeurs.
  Pose(Fichier().substr(0, 7 * 114 + 50));
  EXPECT_EQ(Ouvre()->NbFiches(), 6);
  // Un en-tête qui ment sur le compte, ou du texte : borné par le fichier, ou zéro.
  std::string octets = Fichier();
  std::memcpy(octets.data(), "999999999\0", 10);
  Pose(octets);
  EXPECT_EQ(Ouvre()->NbFiches(), 6);
  std::memcpy(octets.data(), "abc\0", 4);
  Pose(octets);
  EXPECT_EQ(Ouvre()->NbFiches(), 0);
  auto f = Ouvre();
  EXPECT_TRUE(f->NoFicheValide(0));
  EXPECT_TRUE(f->NoFicheValide(-5));  // sans borne basse, voulu
  EXPECT_FALSE(f->NoFicheValide(1));
  TFicheDupli fiche(f.get(), 0, false);
  EXPECT_THAT([&] { fiche.Enregistrement(1); }, ThrowsMessage<ERqBase>(StrEq("FicDupli : Erreur Enreg")));
  TFicheDupli vide(f.get(), 5, true);
  EXPECT_EQ(vide.No(), 0);  // hors de l'index : curseur vide
  EXPECT_TRUE(vide.Elt.Vide());
}

TEST_F(DupliTest, EcritureRateeNeCompteRien) {
  auto f = Ouvre(true);
  Ajoute(*f, "Nantes");
  const std::string avant = Fichier();
  TFichierBrut::Pannes().EcritureCourteApres(0, ".lie");
  Ajoute(*f, "Rennes");
  TFichierBrut::Pannes().Raz();
  EXPECT_TRUE(Contexte.EcritureRatee());
  EXPECT_EQ(std::string(Fichier().c_str()), "1");  // l'en-tête ne couvre pas la moitié écrite
}

// Le classement de l'ouverture se fait sur les octets de la table ; il doit rendre l'ordre
// même de TTableTV::Classement sur les mêmes éléments, y compris pour les valeurs qui piègent
// la clé de 16 octets (même début, ';' en tête, commune vide, accents, ';' dans le préfixe)
// et pour des doublons exacts, rangés alors par Classement lui-même.
TEST_F(DupliTest, OuvertureRangeCommeClassement) {
  const std::vector<std::vector<const char*>> valeurs = {
      {"Saint-Germain-en-Laye", "78", "Île-de-France", "France"},
      {"Saint-Germain-des-Prés", "75", "", "France"},
      {"SAINT-GERMAIN-EN-LAYE", "78", "", ""},
      {"Saint-Germain-en-Laye", "78", "Ile-de-France", "France"},
      {";Lyon", "", "", ""},
      {"", "69", "", "France"},
      {"!Bourg", "", "", ""},
      {"ab;z", "", "", ""},
      {"abc", "", "", ""},
      {"Évreux", "27", "", ""},
      {"Evreux", "27", "", ""},
      {"evreux", "27", "", ""},
      {"Commune 0000000001", "", "Région A", ""},
      {"Commune 0000000001", "", "Région B", ""},
      {"Commune 0000000002", "", "", ""},
  };
  for (const bool doublons : {false, true}) {
    std::string octets(114, 0);
    std::vector<TEltDupChn> elts;
    for (size_t i = 0; i < valeurs.size() + (doublons ? 2 : 0); ++i) {
      const auto& v = valeurs[i % valeurs.size()];
      TEltDupChn e(static_cast<long>(i + 1), v[0], v[1], v[2], v[3]);
      TEnregDupli r{};
      std::strncpy(r.Ville, e.Ville, 50);
      std::strncpy(r.Code, e.Code, 10);
      std::strncpy(r.Pays, e.Pays, 50);
      r.Etat = 'N';
      octets.append(reinterpret_cast<const char*>(&r), sizeof r);
      elts.push_back(e);
    }
    const std::string compte = std::to_string(elts.size());
    octets.replace(0, compte.size(), compte);
    Pose(octets);
    auto f = Ouvre();
    TTableTV attendue;
    for (const TEltDupChn& e : elts) attendue.Ajoute(e);
    TEltDupChn a, b;
    attendue.Classement(a, b);
    ASSERT_EQ(f->Table()->GetNbElt(), attendue.GetNbElt());
    for (long p = 0; p < attendue.GetNbElt(); ++p) {
      f->Table()->Lit(p, a);
      attendue.Lit(p, b);
      EXPECT_EQ(a.NoFiche, b.NoFiche) << "position " << p << (doublons ? " (doublons)" : "");
      EXPECT_EQ(f->TabIndex()[static_cast<size_t>(a.NoFiche)], p);
    }
  }
}

TEST(DupliSansFichier, TableEnMemoireSeulement) {
  TFicDupli f(nullptr, tfDico, false);
  TEltDupChn b(0, "b"), a(0, "a"), c(0, "c");
  int pos = -2;
  EXPECT_EQ(f.Cherche(&b, true, &pos), 1);
  EXPECT_EQ(f.Cherche(&a, true, &pos), 2);
  EXPECT_EQ(pos, 0);  // position de table
  EXPECT_EQ(f.Cherche(&c, true, &pos), 3);
  EXPECT_EQ(pos, 2);
  f.SupprimeElt(1);  // « b » quitte la table pour de bon
  EXPECT_EQ(f.Table()->GetNbElt(), 2);
  EXPECT_EQ(f.Cherche(&b, false), 0);
  EXPECT_TRUE(f.TabIndex().empty());
}

// Les textes d'un lieu : les quatre parties jointes, une partie, le code en département.
TEST_F(DupliTest, TextesDUnLieuParStyleEtSousChamp) {
  auto f = Ouvre(true);
  const long lyon = Ajoute(*f, "Lyon", "69123", "Rhône", "France");
  const long paris = Ajoute(*f, " Paris ", "", "Ile de France", "");
  EXPECT_EQ(f->Charge(lyon), "Lyon ; 69123 ; Rhône ; France");
  EXPECT_EQ(f->Charge(paris), "Paris ;  ; Ile de France");
  EXPECT_EQ(f->Charge(0), "");
  EXPECT_EQ(f->RetDepartement(lyon), "69");
  EXPECT_EQ(f->RetCommune(lyon), "Lyon");
  EXPECT_EQ(f->RetDepartement(0), "");
  TFicheDupli fiche(f.get(), lyon, true);
  EXPECT_EQ(fiche.Elt.ChargeElement(TChampBase::TStyle{148}, TChampBase::TStyle{60}, 2),
            "Lyon\x01" "69123\x01Rhône\x01" "France");
  EXPECT_EQ(fiche.Elt.ChargeElement(TChampBase::TStyle{99}, TChampBase::TStyle{60}, 2), "");
  EXPECT_EQ(fiche.Elt.ChargeElement(TChampBase::TSousChamps{64}, TChampBase::TStyle{60}, 0), "RHÔNE");
  EXPECT_EQ(fiche.Elt.ChargeElement(TChampBase::TSousChamps{55}, TChampBase::TStyle{60}, 3), "FRANCE");
  EXPECT_EQ(ConstuitChnLieuPointVirgule("", "", "", "France"), " ;  ;  ; France");
}

}  // namespace
}  // namespace rqbase
