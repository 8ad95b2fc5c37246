// Les trois listes d'un événement : règles d'ajout, chargement en ordre de rang, mise
// d'accord des lignes avec la liste, rangs, échanges, personnes citées et citations.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;

TEST(ListesEvenement, TroisReglesDAjoutDifferentes) {
  TEvenement::TEnreg e;
  // Sources : doublons admis, la 51e refusée.
  for (int i = 0; i < 50; ++i) EXPECT_EQ(e.AjoutSource(i % 2 ? 7 : 100 + i), i);
  EXPECT_EQ(e.AjoutSource(999), -1);
  EXPECT_EQ(e.CountSource(), 50);
  e.SupprSource(0);
  EXPECT_EQ(e.Sources[0], 7);
  EXPECT_EQ(e.Sources[49], 0);
  // Illustrations : la même deux fois reste une fois.
  EXPECT_EQ(e.AjoutIllustration(5), 0);
  EXPECT_EQ(e.AjoutIllustration(6), 1);
  EXPECT_EQ(e.AjoutIllustration(5), 0);
  EXPECT_EQ(e.CountIllustration(), 2);
  for (int i = 0; i < 48; ++i) e.AjoutIllustration(1000 + i);
  EXPECT_EQ(e.AjoutIllustration(2000), -1);
  EXPECT_EQ(e.AjoutIllustration(6), 1);  // déjà là, même table pleine
  // Personnes citées : une personne déjà là rend sa place, table pleine : rien.
  TPersAssociee p;
  p.Lien = TLienPers(42);
  p.LienQualite = 3;
  EXPECT_EQ(e.AjoutPersAssociee(p), 0);
  p.LienQualite = 9;
  EXPECT_EQ(e.AjoutPersAssociee(p), 0);
  EXPECT_EQ(e.PersAssociees[0].LienQualite, 3);
  for (int i = 1; i < 50; ++i) e.AjoutPersAssociee(TPersAssociee{TLienPers(100 + i), 0, 0});
  EXPECT_EQ(e.AjoutPersAssociee(TPersAssociee{TLienPers(500), 0, 0}), -1);
  TPersAssociee retire;
  e.SupprPersAssocieeNo(42, &retire);
  EXPECT_EQ(retire.Lien.No, 42);
  EXPECT_EQ(e.ChercheRgNoPersAssociee(101), 0);
  EXPECT_EQ(e.CountPersAssociee(), 49);
}

class SourcesBddTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Racine = fs::temp_directory_path() / ("rq_sources_" + std::to_string(::getpid()) + "_" +
                                          ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(Racine);
    Bdd = std::make_unique<TModuleBDD>((Racine / "Famille.rq2" / "Famille.adb").string(), "5.90");
    ASSERT_TRUE(Bdd->CreateDataBase());
    ASSERT_TRUE(Bdd->OpenDataBase());
    Ev = TEvenement(Bdd.get());
    Ev.Enreg.SetLibelle("NAISSANCE");
    Ev.Enreg.NoPersA = 5;
    Bdd->EnregistrementEven(&Ev);
  }
  void TearDown() override {
    Bdd.reset();
    fs::remove_all(Racine);
  }
  long Source(long even, const std::string& type) {
    TSource s(Bdd.get());
    s.NoEven = even;
    s.SetType(type);
    s.SetDescriptif("registre de " + type);
    Bdd->EnregistrementSource(&s);
    return s.No;
  }
  long Compte(const std::string& sql) {
    SQLite::Statement q(Bdd->Base(), sql);
    q.executeStep();
    return static_cast<long>(q.getColumn(0).getInt64());
  }
  std::vector<long> Sources(long even) {
    TEvenement::TEnreg e;
    e.No = even;
    Bdd->ChargerSourceOfEven(&e);
    std::vector<long> r;
    for (int32_t v : e.Sources)
      if (v) r.push_back(v);
    return r;
  }
  fs::path Racine;
  std::unique_ptr<TModuleBDD> Bdd;
  TEvenement Ev;
};

TEST_F(SourcesBddTest, SourcesEnOrdreDeRangMisesDAccordAvecLaListe) {
  const long a = Source(Ev.No(), "Acte"), b = Source(Ev.No(), "Bans"), c = Source(Ev.No(), "Cadastre");
  EXPECT_EQ(Sources(Ev.No()), (std::vector<long>{a, b, c}));
  TSource lue(Bdd.get(), b);
  EXPECT_EQ(lue.Enreg.Type, "Bans");
  EXPECT_EQ(lue.Enreg.Descriptif, "registre de Bans");
  EXPECT_EQ(lue.NoEven, Ev.No());

  // La liste en mémoire commande : c passe en tête, a sort de l'événement (gardée, détachée).
  TEvenement ev(Bdd.get(), Ev.No());
  ev.GetSource();
  ev.Enreg.Sources[0] = static_cast<int32_t>(c);
  ev.Enreg.Sources[1] = static_cast<int32_t>(b);
  ev.Enreg.Sources[2] = 0;
  EXPECT_EQ(Bdd->UpdaterSourceOfEven(&ev), 2);  // c change de rang, a est détachée ; b reste
  EXPECT_EQ(Sources(Ev.No()), (std::vector<long>{c, b}));
  EXPECT_EQ(Compte("SELECT ID_EVEN FROM Sources WHERE ID_SOURCE = " + std::to_string(a)), 0);
  EXPECT_EQ(Bdd->UpdaterSourceOfEven(&ev), 0);  // déjà d'accord
  // Une liste jamais chargée n'est pas touchée.
  TEvenement nonCharge(Bdd.get(), Ev.No());
  EXPECT_EQ(Bdd->UpdaterSourceOfEven(&nonCharge), 0);
  EXPECT_EQ(Sources(Ev.No()), (std::vector<long>{c, b}));

  // Échange de deux sources d'événements différents : les rangs s'échangent tout de même.
  TEvenement autre(Bdd.get());
  autre.Enreg.SetLibelle("DECES");
  Bdd->EnregistrementEven(&autre);
  const long x = Source(autre.No(), "X"), y = Source(autre.No(), "Y");
  Bdd->Base().exec("UPDATE Sources SET RANG = 7 WHERE ID_SOURCE = " + std::to_string(y));
  Bdd->SwapSources(c, y);
  EXPECT_EQ(Compte("SELECT RANG FROM Sources WHERE ID_SOURCE = " + std::to_string(c)), 7);
  EXPECT_EQ(Compte("SELECT RANG FROM Sources WHERE ID_SOURCE = " + std::to_string(y)), 0);
  // x et y au rang 0 : le numéro départage, y repasse au rang 1.
  EXPECT_EQ(Bdd->UpdateRang("Sources", autre.No()), 1);
  EXPECT_EQ(Compte("SELECT RANG FROM Sources WHERE ID_SOURCE = " + std::to_string(y)), 1);
  EXPECT_EQ(Sources(autre.No()), (std::vector<long>{x, y}));
}

TEST_F(SourcesBddTest, AuDelaDeCinquanteLignesRienNEstChargeNiTouche) {
  for (int i = 0; i < 55; ++i) Source(Ev.No(), "S" + std::to_string(i));
  TEvenement ev(Bdd.get(), Ev.No());
  ev.GetSource();
  EXPECT_EQ(ev.Enreg.CountSource(), 50);
  ev.Enreg.SupprSource(0);
  Bdd->UpdaterSourceOfEven(&ev);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Sources WHERE ID_EVEN = " + std::to_string(Ev.No())), 54);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Sources WHERE RANG >= 50"), 5);
}

TEST_F(SourcesBddTest, IllustrationsUneParDefautParPersonne) {
  TIllustration i1(Bdd.get()), i2(Bdd.get());
  i1.NoEven = i2.NoEven = Ev.No();
  i1.SetChemin("Images\\portrait.jpg");
  i2.SetChemin("Images/acte é.png");
  Bdd->EnregistrementIllustration(&i1);
  Bdd->EnregistrementIllustration(&i2);
  TEvenement ev(Bdd.get(), Ev.No());
  const int32_t* ill = ev.Illustration();
  EXPECT_EQ(ill[0], i1.No);
  EXPECT_EQ(ill[1], i2.No);
  EXPECT_EQ(Bdd->GetNbIllustration(Ev.No()), 2);
  TIllustration lue(Bdd.get(), i2.No);
  EXPECT_EQ(lue.Enreg.Chemin, "Images/acte é.png");
  // Le fichier n'existe pas : le chemin dans le dossier tout de même.
  EXPECT_EQ(TIllustration(Bdd.get(), i1.No).GetExpandFilename(),
            (Racine / "Famille.rq2").string() + "/Images/portrait.jpg");
  Bdd->SwapIllustrations(i1.No, i2.No);
  TEvenement ev2(Bdd.get(), Ev.No());
  EXPECT_EQ(ev2.Illustration()[0], i2.No);
  Bdd->SetIllustrationDefault(5, Ev.No(), i2.No);
  TEvenement ev3(Bdd.get(), Ev.No());
  EXPECT_EQ(ev3.Enreg.NoIllustrationParDefaut, i2.No);
}

TEST_F(SourcesBddTest, PersonnesCiteesEtCitationsDeLaPersonne) {
  TEvenement ev(Bdd.get(), Ev.No());
  ev.GetPersAssociee();
  ev.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(30, 'A'), 2, 4});
  ev.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(31), 1, 0});
  EXPECT_EQ(Bdd->EnregistrementPersAssociees(&ev), 2);
  EXPECT_EQ(Bdd->EnregistrementPersAssociees(&ev), 0);
  TEvenement relu(Bdd.get(), Ev.No());
  const TPersAssociee* p = relu.GetPersAssociee();
  EXPECT_EQ(p[0].Lien.No, 30);
  EXPECT_EQ(p[0].Lien.Octet, 'A');
  EXPECT_EQ(p[0].LienQualite, 2);
  EXPECT_EQ(p[0].LienParente, 4);
  EXPECT_EQ(p[1].Lien.No, 31);
  EXPECT_TRUE(p[2].Vide());

  // Un second événement cite aussi 30 : ses citations suivent leur rang.
  TEvenement second(Bdd.get());
  second.Enreg.SetLibelle("DECES");
  second.Enreg.NoPersA = 6;
  second.Enreg.PersAssocieesChargees = true;
  second.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(30), 5, 0});
  Bdd->EnregistrementEven(&second);
  std::vector<long> citations;
  Bdd->ChargerCitationsDePersonne(30, citations);
  EXPECT_EQ(citations, (std::vector<long>{Ev.No(), second.No()}));
  Bdd->EnregistreOrdreCitations(30, {second.No(), Ev.No()});
  Bdd->ChargerCitationsDePersonne(30, citations);
  EXPECT_EQ(citations, (std::vector<long>{second.No(), Ev.No()}));
  EXPECT_TRUE(Bdd->PersIsCitee(31));

  // Modifier une qualité, retirer 31 : une ligne changée, une effacée.
  relu.Enreg.ModifPersAssociee(0, TPersAssociee{TLienPers(30, 'A'), 8, 4});
  relu.Enreg.SupprPersAssocieeNo(31);
  EXPECT_EQ(Bdd->EnregistrementPersAssociees(&relu), 2);
  EXPECT_FALSE(Bdd->PersIsCitee(31));

  // 30 supprimée : ses citations sont cachées, puis rendues.
  Bdd->MasquerCitationsOfPerson(30, false);
  Bdd->ChargerCitationsDePersonne(30, citations);
  EXPECT_EQ(citations, (std::vector<long>{-second.No(), -Ev.No()}));
  Bdd->MasquerCitationsOfPerson(30, true);
  Bdd->ChargerCitationsDePersonne(30, citations);
  EXPECT_EQ(citations, (std::vector<long>{second.No(), Ev.No()}));
  // L'effacement définitif emporte les trois listes.
  Bdd->SupprimeEvenDefinitvement(Ev.No());
  Bdd->ChargerCitationsDePersonne(30, citations);
  EXPECT_EQ(citations, (std::vector<long>{second.No()}));
}

}  // namespace
}  // namespace rqbase

namespace rqbase {
namespace {

TEST_F(SourcesBddTest, NumerosDecalesParcoursEtRangsDeConversion) {
  const long s1 = Source(Ev.No(), "Acte");
  TEvenement couple(Bdd.get());
  couple.Enreg.SetLibelle("MARIAGE");
  couple.Enreg.NoPersA = 5;
  couple.Enreg.NoPersB = 6;
  Bdd->EnregistrementEven(&couple);
  TChpsSimple titre(Bdd.get());
  titre.Enreg.SetLibelle("TITRE");
  titre.Enreg.NoPersA = 5;
  Bdd->EnregistrementChpsSimple(&titre);
  EXPECT_EQ(Bdd->FindEvenOfPerson(6, "MARIAGE"), couple.No());
  EXPECT_FALSE(Bdd->EvenExistsForPerson(6, "TITRE"));
  EXPECT_TRUE(Bdd->ChpsSimpleExistsForPerson(5, "TITRE"));
  std::map<std::string, long> resume;
  Bdd->ResumerTabChpsSimple(resume);
  EXPECT_EQ(resume, (std::map<std::string, long>{{"TITRE", 1}}));

  // Trois lignes (1, 2, 3) passent après 100 : 104, 105, 106 ; la source suit sa copie ;
  // l'ancienne ligne garde son NoPersB (neutralisation d'origine).
  EXPECT_EQ(Bdd->ShiftIDEvent(100), 106);
  EXPECT_EQ(Compte("SELECT ID_EVEN FROM Sources WHERE ID_SOURCE = " + std::to_string(s1)), 104);
  EXPECT_EQ(Compte("SELECT NoPersA FROM Evenements WHERE ID = 104"), 5);
  EXPECT_EQ(Compte("SELECT NoPersA FROM Evenements WHERE ID = " + std::to_string(couple.No())), 0);
  EXPECT_EQ(Compte("SELECT NoPersB FROM Evenements WHERE ID = " + std::to_string(couple.No())), 6);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE NoPersA = 5"), 3);

  Bdd->BeginParcoursSources(104);
  TSource s(Bdd.get());
  ASSERT_TRUE(Bdd->GetSourceParcours(&s));
  EXPECT_EQ(s.Enreg.Type, "Acte");
  EXPECT_FALSE(Bdd->GetSourceParcours(&s));
  Bdd->EndParcoursSources();

  // Citations sans rang (conversion) : rangs 1, 2 dans l'ordre des lignes.
  Bdd->Base().exec("INSERT INTO PersAssociees (ID_EVEN, LienPers_No, Rang) VALUES (104, 70, 0), (105, 70, 0)");
  Bdd->ConversionRangCitation(70);
  std::vector<long> citations;
  Bdd->ChargerCitationsDePersonne(70, citations);
  EXPECT_EQ(citations, (std::vector<long>{104, 105}));
  Bdd->ConversionSetRangCitation(70, 104, 9);
  Bdd->ChargerCitationsDePersonne(70, citations);
  EXPECT_EQ(citations, (std::vector<long>{105, 104}));
}

TEST_F(SourcesBddTest, EnregistrementRefuseParUnDossierQuiNePeutPasEcrire) {
  TContexteDossier contexte((Racine / "Famille.rq2" / "Famille.prs").string());
  Bdd->Contexte = &contexte;
  TIllustration i(Bdd.get());
  i.NoEven = Ev.No();
  i.SetChemin((Racine / "Famille.rq2").string() + "/Images/photo.jpg");
  EXPECT_TRUE(i.Enregistrement());
  EXPECT_EQ(TIllustration(Bdd.get(), i.No).Enreg.Chemin, "Images/photo.jpg");  // rendu relatif
  const long avant = Compte("SELECT COUNT(*) FROM Evenements") + Compte("SELECT COUNT(*) FROM Sources");
  contexte.SetReadOnly(true);
  TEvenement ev(Bdd.get());
  ev.Enreg.SetLibelle("DECES");
  TSource s(Bdd.get());
  s.SetType("Acte");
  TChpsSimple c(Bdd.get());
  c.Enreg.SetLibelle("TITRE");
  EXPECT_FALSE(ev.Enregistrement());
  EXPECT_FALSE(s.Enregistrement());
  EXPECT_FALSE(c.Enregistrement());
  contexte.SetReadOnly(false);
  contexte.FixeErreur(true);
  EXPECT_FALSE(ev.Enregistrement());
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements") + Compte("SELECT COUNT(*) FROM Sources"), avant);
  contexte.FixeErreur(false);
  EXPECT_TRUE(ev.Enregistrement());
  Bdd->Contexte = nullptr;
}

TEST_F(SourcesBddTest, IllustrationsNonUtiliseesListeesPuisEffacees) {
  const fs::path dossier = Racine / "Famille.rq2";
  fs::create_directories(dossier / "Images" / "actes");
  for (const char* nom : {"Images/portrait.jpg", "Images/actes/naissance.png", "Images/orpheline.jpg",
                          "Images/retouche.iev", "Images/actes/vieux.bmp"})
    std::ofstream(dossier / nom) << "x";
  fs::create_symlink(dossier / "Images" / "portrait.jpg", dossier / "Images" / "lien.jpg");
  TIllustration a(Bdd.get()), b(Bdd.get()), detachee(Bdd.get());
  a.NoEven = b.NoEven = Ev.No();
  a.SetChemin("Images\\portrait.jpg");  // écrit par une version d'avant
  b.SetChemin("Images/actes/naissance.png");
  detachee.SetChemin("Images/actes/vieux.bmp");  // sans événement : ne compte pas
  Bdd->EnregistrementIllustration(&a);
  Bdd->EnregistrementIllustration(&b);
  Bdd->EnregistrementIllustration(&detachee);
  const std::string d = dossier.string();
  std::vector<std::string> liste;
  Bdd->ChargeIllustrationsNonUtilisees(nullptr, liste);
  EXPECT_EQ(liste, (std::vector<std::string>{d + "/Images/actes/vieux.bmp", d + "/Images/orpheline.jpg"}));
  int nb = 0;
  Bdd->CleanIllustrationsNonUtilisees(nullptr, nb);
  EXPECT_EQ(nb, 3);  // vieux.bmp, orpheline.jpg et retouche.iev
  EXPECT_TRUE(fs::exists(dossier / "Images" / "portrait.jpg"));
  EXPECT_TRUE(fs::exists(dossier / "Images" / "actes" / "naissance.png"));
  EXPECT_TRUE(fs::is_symlink(dossier / "Images" / "lien.jpg"));  // jamais suivi ni effacé
  EXPECT_FALSE(fs::exists(dossier / "Images" / "orpheline.jpg"));
  EXPECT_FALSE(fs::exists(dossier / "Images" / "retouche.iev"));
}

// Ajout d'une ligne neuve, écriture d'une seule personne citée, chemin d'un dossier exporté.
TEST_F(SourcesBddTest, AjoutDeLigneEtPersonneCiteeSeule) {
  const long a = Source(Ev.No(), "Acte");
  // Ajouter une source déjà numérotée en fait une copie au bout de la liste.
  TSource copie(Bdd.get(), a);
  const long b = Bdd->AjouterEltTableSource(&copie);
  EXPECT_NE(b, a);
  EXPECT_EQ(Sources(Ev.No()), (std::vector<long>{a, b}));
  EXPECT_EQ(TSource(Bdd.get(), b).Enreg.Descriptif, "registre de Acte");
  // Une illustration : la même chose, et l'enregistrement inchangé n'écrit rien.
  TIllustration il(Bdd.get());
  il.NoEven = Ev.No();
  il.SetChemin("Images/acte.jpg");
  const long i1 = Bdd->AjouterEltTableIllustration(&il);
  const long avant = Bdd->LignesEcrites;
  EXPECT_FALSE(Bdd->EnregistrementIllustration(&il));
  EXPECT_EQ(Bdd->LignesEcrites, avant);
  EXPECT_EQ(Bdd->GetNbIllustration(Ev.No()), 1);
  EXPECT_EQ(Bdd->GetIDIllustrationMax(), i1);
  // En import, un numéro réservé reste celui de la ligne ajoutée.
  Bdd->BeginImport();
  TSource reservee(Bdd.get());
  reservee.No = Bdd->ReturnNewNumSource();
  reservee.NoEven = Ev.No();
  const long r = reservee.No;
  EXPECT_EQ(Bdd->AjouterEltTableSource(&reservee), r);
  Bdd->EndImport();
  EXPECT_TRUE(Bdd->NoSourceExists(r));

  // Personne citée : place vide ou événement sans numéro refusés ; mise à jour sans ligne
  // refusée ; insertion, puis mise à jour de la seule ligne de cette personne.
  TEvenement ev(Bdd.get(), Ev.No());
  ev.GetPersAssociee();
  EXPECT_FALSE(Bdd->SetPersAssociee(&ev, 0, true));
  ev.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(42, 'B'), 3, 4});
  EXPECT_FALSE(Bdd->SetPersAssociee(&ev, 0, false));
  TEvenement sansNo(Bdd.get());
  sansNo.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(42), 3, 4});
  EXPECT_FALSE(Bdd->SetPersAssociee(&sansNo, 0, true));
  ASSERT_TRUE(Bdd->SetPersAssociee(&ev, 0, true));
  ev.Enreg.PersAssociees[0].LienQualite = 8;
  ASSERT_TRUE(Bdd->SetPersAssociee(&ev, 0, false));
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM PersAssociees"), 1);
  EXPECT_EQ(Compte("SELECT LienQualite FROM PersAssociees WHERE LienPers_No = 42"), 8);
  EXPECT_EQ(Compte("SELECT Rang FROM PersAssociees WHERE LienPers_No = 42"), 1);
  std::vector<long> citations;
  Bdd->ChargerLienCitationOfPerson(42, citations);
  EXPECT_EQ(citations, std::vector<long>{Ev.No()});
  // L'enregistrement de la liste trouve la ligne déjà d'accord.
  EXPECT_EQ(Bdd->EnregistrementPersAssociees(&ev), 0);
}

TEST_F(SourcesBddTest, CheminDUnDossierExporte) {
  EXPECT_EQ(TransformPathToPathExport("C:\\Genea\\Famille.rq2\\Images\\1850\\acte.jpg", "/cle/F.rq2"),
            "/cle/F.rq2/Images/1850/acte.jpg");
  EXPECT_EQ(TransformPathToPathExport("/a/images/b/IMAGES/c.png", "/d/"), "/d/Images/c.png");
  EXPECT_EQ(TransformPathToPathExport("/photos/MesImages/c.png", "/d"), "/d/Images/c.png");
  EXPECT_EQ(TransformPathToPathExport("portrait.jpg", "/d"), "/d/Images/portrait.jpg");

  const fs::path dossier = Racine / "Famille.rq2";
  fs::create_directories(dossier / "Images");
  std::ofstream(dossier / "Images" / "acte.jpg") << "x";
  TIllustration il(Bdd.get());
  il.SetChemin("C:\\Ailleurs\\Images\\acte.jpg");
  // Le fichier manque là où le chemin le met : hors export, le chemin reste le sien.
  EXPECT_EQ(il.GetExpandFilename(), (dossier / "C:/Ailleurs/Images/acte.jpg").string());
  Bdd->DossierExport = true;
  EXPECT_EQ(il.GetExpandFilename(), (dossier / "Images" / "acte.jpg").string());
  il.SetChemin("Images\\absent.jpg");
  EXPECT_EQ(il.GetExpandFilename(), (dossier / "Images" / "absent.jpg").string());
}

}  // namespace
}  // namespace rqbase
