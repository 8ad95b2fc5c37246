// Événements et champs simples dans la base : lignes et objets, écriture de ce qui change
// seulement, numéros en import et hors import, colonnes dérivées, parcours, lignes
// cachées, lignes abîmées écrites par un autre outil.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;
using ::testing::StartsWith;

class EvenementsBddTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Racine = fs::temp_directory_path() / ("rq_evens_" + std::to_string(::getpid()) + "_" +
                                          ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(Racine);
    Adb = (Racine / "Famille.rq2" / "Famille.adb").string();
    Bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
    ASSERT_TRUE(Bdd->CreateDataBase());
    ASSERT_TRUE(Bdd->OpenDataBase());
  }
  void TearDown() override {
    Bdd.reset();
    fs::remove_all(Racine);
  }
  long Compte(const std::string& sql) {
    SQLite::Statement q(Bdd->Base(), sql);
    q.executeStep();
    return static_cast<long>(q.getColumn(0).getInt64());
  }
  std::string TexteBrut(const std::string& sql) {
    SQLite::Statement q(Bdd->Base(), sql);
    q.executeStep();
    return q.getColumn(0).getString();
  }
  // Un événement complet de la personne `a` (et `b` pour un couple).
  TEvenement Naissance(long a, long b = 0, const char* date = "12/03/1850") {
    TEvenement ev(Bdd.get());
    ev.Enreg.SetLibelle("NAISSANCE");
    ev.Enreg.SetDonnee("à la maison");
    ev.Enreg.NoPersA = a;
    ev.Enreg.NoPersB = b;
    ev.Enreg.Date = TDateRQ('G', date);
    ev.Enreg.Date.SetActe("ca");
    ev.Enreg.Lieu = 4;
    ev.Enreg.SetLieuDit("Le Moulin");
    ev.Enreg.Note = 2;
    return ev;
  }
  fs::path Racine;
  std::string Adb;
  std::unique_ptr<TModuleBDD> Bdd;
};

TEST(DateIndex, TexteDeDateVersEntierAAAAMMJJ) {
  struct {
    const char* date;
    long attendu;
  } lignes[] = {
      {"../../1850", 18500000}, {"12/03/1850", 18500312},          {"../03/1850", 18500300}, {"1850", 0},
      {"12/03/185", 0},         {"01/05/2019 12:30:00", 20190501}, {"xx/03/1850", 18500300}, {"12/03/abcd", 312},
      {"1850/1860 ", 1850},  // voulu : une fourchette se lit jour 1850, mois et année nuls
      {"....../1850", 0},
  };
  for (const auto& l : lignes)
    EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(std::string_view(l.date)), l.attendu) << l.date;
  // Républicain et hébreu passent par le grégorien ; une date sans jour garde son année.
  EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(TDateRQ('R', "01/VEND/01")), 17920922);
  EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(TDateRQ('H', "30/06/5784")), 20240310);
  EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(TDateRQ('H', "../../5784")), 20240000);
  EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(TDateRQ('R', "01/XXXX/05")), 17970000);
  EXPECT_EQ(TModuleBDD::ConvDateEnDateIndex(TDateRQ('G', "")), 0);
}

TEST(TextesSql, EchappementEtDonneeIndexee) {
  EXPECT_EQ(TModuleBDD::ConvertirChaineFormatSQL("l'an\\1\n\r\t\b"), "l''an\\\\1\\n\\r\\t\\b");
  EXPECT_EQ(TModuleBDD::FormatChaine_Donnee("  charpentier de marine au port  ", false), "charpentier de marin");
  EXPECT_EQ(TModuleBDD::FormatChaine_Donnee(" l'un ", true), "l''un");
  EXPECT_EQ(TModuleBDD::ConvAnneeEntierEnAnsiString(850), "0850");
  EXPECT_EQ(TModuleBDD::ConvJourOuMoisEntierEnAnsiString(3), "03");
  EXPECT_DOUBLE_EQ(TModuleBDD::StrVersDateTime("01/01/1900"), 2.0);
  EXPECT_DOUBLE_EQ(TModuleBDD::StrVersDateTime("01/01/1900 12:00:00"), 2.5);
  EXPECT_DOUBLE_EQ(TModuleBDD::StrVersDateTime("31/02/1900"), 0.0);
}

TEST_F(EvenementsBddTest, UnEvenementEcritSeRelitTelQuelEtSesColonnesDeriveesSontTenues) {
  TEvenement ev = Naissance(5);
  ASSERT_TRUE(Bdd->EnregistrementEven(&ev));
  ASSERT_GT(ev.No(), 0);
  TEvenement relu(Bdd.get(), ev.No());
  EXPECT_EQ(relu.Enreg.Libelle, "NAISSANCE");
  EXPECT_EQ(relu.Enreg.Donnee, "à la maison");
  EXPECT_EQ(relu.Enreg.NoPersA, 5);
  EXPECT_EQ(relu.Enreg.Date.GetDate(), "12/03/1850");
  EXPECT_EQ(relu.Enreg.Date.GetActe(), "ca");
  EXPECT_EQ(relu.Enreg.Date.GetCalendrier(), 'G');
  EXPECT_EQ(relu.Enreg.Lieu, 4);
  EXPECT_EQ(relu.Enreg.LieuDit, "Le Moulin");
  EXPECT_EQ(relu.Enreg.Note, 2);
  const std::string id = std::to_string(ev.No());
  // Le texte est en UTF-8 dans la base, lisible par tout outil SQLite.
  EXPECT_EQ(TexteBrut("SELECT Donnee FROM Evenements WHERE ID = " + id), "\xC3\xA0 la maison");
  EXPECT_EQ(Compte("SELECT _DATE FROM Evenements WHERE ID = " + id), 18500312);
  EXPECT_EQ(Compte("SELECT Type FROM Evenements WHERE ID = " + id), 0);
  EXPECT_EQ(TexteBrut("SELECT _DONNEE FROM Evenements WHERE ID = " + id), "\xC3\xA0 la maison");
  // SetEvenement ne date pas ses lignes.
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE DateLastModif IS NOT NULL"), 0);

  // Trop longs : coupés à la taille de leur colonne.
  TEvenement long_(Bdd.get());
  long_.Enreg.Libelle = std::string(30, 'L');
  long_.Enreg.Donnee = std::string(150, 'd');
  long_.Enreg.NoPersA = 6;
  Bdd->EnregistrementEven(&long_);
  EXPECT_EQ(Compte("SELECT LENGTH(LibelleChamps) FROM Evenements WHERE ID = " + std::to_string(long_.No())), 21);
  EXPECT_EQ(Compte("SELECT LENGTH(Donnee) FROM Evenements WHERE ID = " + std::to_string(long_.No())), 100);

  // Un fil de fond lit par son propre curseur, la même ligne.
  Bdd->NomThread = "ThreadBirthday";
  TEvenement parFil(Bdd.get(), ev.No());
  EXPECT_EQ(parFil.Enreg.LieuDit, "Le Moulin");
  Bdd->NomThread.clear();

  // Introuvable : objet vierge, rien levé.
  TEvenement absent(Bdd.get(), 999);
  EXPECT_EQ(absent.No(), 0);
  EXPECT_TRUE(absent.Enreg.Libelle.empty());
}

TEST_F(EvenementsBddTest, UnObjetInchangeNEcritRienEtUnChangementEcritUneLigne) {
  TEvenement ev = Naissance(5, 7);
  ev.SetNoPersRang(5, 3);
  Bdd->EnregistrementEven(&ev);
  TChpsSimple chp(Bdd.get());
  chp.Enreg.SetLibelle("PROFESSION");
  chp.Enreg.SetDonnee("tisserand");
  chp.Enreg.NoPersA = 5;
  Bdd->EnregistrementChpsSimple(&chp);
  EXPECT_EQ(Compte("SELECT RANG_A FROM Evenements WHERE ID = " + std::to_string(ev.No())), 3);
  EXPECT_EQ(Compte("SELECT Type FROM Evenements WHERE ID = " + std::to_string(chp.No())), 1);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE DateLastModif IS NOT NULL"), 1);

  // Relu puis réécrit sans changement : aucune ligne.
  TEvenement relu(Bdd.get(), ev.No());
  relu.SetNoPersRang(5, 3);
  TEvenement copie = relu;  // une copie de date change '?' en 'G' : ce n'est pas un changement
  TChpsSimple reluChp(Bdd.get(), chp.No());
  const long avant = Bdd->LignesEcrites;
  EXPECT_FALSE(Bdd->SetEvenement(&copie, true));
  EXPECT_FALSE(Bdd->SetChpsSimple(&reluChp));
  EXPECT_EQ(Bdd->LignesEcrites, avant);

  // Le rang de la seconde personne va dans RANG_B, celui de la première reste.
  relu.SetNoPersRang(7, 2);
  EXPECT_TRUE(Bdd->SetEvenement(&relu, true));
  EXPECT_EQ(Bdd->LignesEcrites, avant + 1);
  EXPECT_EQ(Compte("SELECT RANG_A FROM Evenements WHERE ID = " + std::to_string(ev.No())), 3);
  EXPECT_EQ(Compte("SELECT RANG_B FROM Evenements WHERE ID = " + std::to_string(ev.No())), 2);

  relu.Enreg.Date = TDateRQ('R', "01/VEND/01");
  EXPECT_TRUE(Bdd->SetEvenement(&relu, true));
  EXPECT_EQ(Compte("SELECT _DATE FROM Evenements WHERE ID = " + std::to_string(ev.No())), 17920922);
  EXPECT_EQ(TexteBrut("SELECT TypeCalend FROM Evenements WHERE ID = " + std::to_string(ev.No())), "R");
}

TEST_F(EvenementsBddTest, LignesAbimeesSeLisentSansPlantageEtNeSontPasReecritesSansChangement) {
  Bdd->NbLieux = [] { return 10L; };
  Bdd->NbNotes = [] { return 3L; };
  Bdd->Base().exec(
      "INSERT INTO Evenements (ID, Type, LibelleChamps, Donnee, NoPersA, NoPersB, Acte, TypeCalend, \"Date\", Lieu, "
      "LieuDit, Note, _DONNEE, _DATE) VALUES "
      "(1, 0, '  BAPTEME  ', '" +
      std::string(150, 'x') + "', 8, 0, 'abc', '', '01/02/1900xyz', 11, '" + std::string(80, 'y') + "', 4, '" +
      std::string(20, 'x') +
      "', 19000201),"
      "(2, 0, 'DECES', 'texte', 8, 0, '', 'G', '01/02/1900', -5, '', -1, 'texte', 0),"
      "(3, 0, 'DECES', 'texte', 8, 0, '', 'G', '01/02/1900', 99999999999, 'ok', 'abc', 'texte', 0),"
      "(4, 0, 'DECES', X'00FF', 8, 0, '', 'G', '', 10, '', 3, '', 0)");
  TEvenement e1(Bdd.get(), 1), e2(Bdd.get(), 2), e3(Bdd.get(), 3), e4(Bdd.get(), 4);
  EXPECT_EQ(e1.Enreg.Libelle, "BAPTEME");
  EXPECT_EQ(e1.Enreg.Donnee, std::string(100, 'x'));
  EXPECT_EQ(e1.Enreg.Date.GetActe(), "");
  EXPECT_EQ(e1.Enreg.Date.GetCalendrier(), '?');
  EXPECT_EQ(e1.Enreg.Date.GetDate(), "01/02/1900");
  EXPECT_EQ(e1.Enreg.Lieu, 0);  // au-delà du fichier des lieux
  EXPECT_EQ(e1.Enreg.LieuDit, std::string(51, 'y'));
  EXPECT_EQ(e1.Enreg.Note, 0);  // au-delà du fichier des notes
  EXPECT_EQ(e2.Enreg.Lieu, 0);
  EXPECT_EQ(e2.Enreg.Note, 0);
  EXPECT_EQ(e3.Enreg.Lieu, 0);  // hors des 32 bits de la colonne
  EXPECT_EQ(e3.Enreg.Note, 0);
  EXPECT_EQ(e4.Enreg.Lieu, 10);
  EXPECT_EQ(e4.Enreg.Note, 3);
  // Relue puis réenregistrée telle quelle, la ligne n'est pas réécrite : le texte trop long
  // et les renvois annulés à la lecture restent dans la base.
  const long avant = Bdd->LignesEcrites;
  EXPECT_FALSE(Bdd->SetEvenement(&e1, true));
  // Copiée (le calendrier '?' y devient 'G'), elle n'est pas réécrite non plus.
  TEvenement copie = e1;
  EXPECT_EQ(copie.Enreg.Date.GetCalendrier(), 'G');
  EXPECT_FALSE(Bdd->SetEvenement(&copie, true));
  EXPECT_EQ(Bdd->LignesEcrites, avant);
  EXPECT_EQ(Compte("SELECT LENGTH(Donnee) FROM Evenements WHERE ID = 1"), 150);
  EXPECT_EQ(Compte("SELECT Lieu FROM Evenements WHERE ID = 1"), 11);
  // Des colonnes dérivées fausses sont remises d'aplomb (_DATE de la ligne 2 : 0) ; le lieu
  // et la note annulés à la lecture, que l'objet n'a pas changés, restent tels quels.
  EXPECT_TRUE(Bdd->SetEvenement(&e2, true));
  EXPECT_EQ(Compte("SELECT _DATE FROM Evenements WHERE ID = 2"), 19000201);
  EXPECT_EQ(Compte("SELECT Lieu FROM Evenements WHERE ID = 2"), -5);
  // Une autre colonne changée : le texte trop long, non touché, n'est pas coupé ; le lieu
  // donné par l'objet remplace celui qui était hors du fichier.
  e1.Enreg.Lieu = 7;
  EXPECT_TRUE(Bdd->SetEvenement(&e1, true));
  EXPECT_EQ(Compte("SELECT LENGTH(Donnee) FROM Evenements WHERE ID = 1"), 150);
  EXPECT_EQ(Compte("SELECT Lieu FROM Evenements WHERE ID = 1"), 7);
  e1.Enreg.SetDonnee("court");
  EXPECT_TRUE(Bdd->SetEvenement(&e1, true));
  EXPECT_EQ(TexteBrut("SELECT Donnee FROM Evenements WHERE ID = 1"), "court");
}

TEST_F(EvenementsBddTest, NumerosDonnesHorsImportEtEnImport) {
  // Hors import, un numéro est toujours une ligne.
  const long n1 = Bdd->ReturnNewNumEven();
  EXPECT_TRUE(Bdd->IsIdEventExists(n1));
  EXPECT_FALSE(Bdd->IsReserved(n1));
  EXPECT_TRUE(Bdd->IsReserved(0));
  TEvenement ev = Naissance(5);
  ev.Enreg.No = n1;
  Bdd->EnregistrementEven(&ev);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements"), 1);
  EXPECT_EQ(Compte("SELECT NoPersA FROM Evenements WHERE ID = " + std::to_string(n1)), 5);

  // En import : numéros réservés sans ligne, la ligne arrive avec son numéro imposé.
  Bdd->BeginImport();
  const long r1 = Bdd->ReturnNewNumEven();
  const long r2 = Bdd->ReturnNewNumChpsSimple();
  EXPECT_EQ(r2, r1 + 1);
  EXPECT_GT(r1, n1);
  EXPECT_TRUE(Bdd->IsReserved(r1));
  EXPECT_FALSE(Bdd->IsIdEventExists(r1));
  TEvenement imp = Naissance(9);
  imp.Enreg.No = r1;
  Bdd->EnregistrementEven(&imp);
  TEvenement sansNumero = Naissance(9);
  Bdd->EnregistrementEven(&sansNumero);
  EXPECT_EQ(sansNumero.No(), r2 + 1);
  Bdd->EndImport();
  EXPECT_FALSE(Bdd->IsReserved(r1));
  EXPECT_TRUE(Bdd->IsIdEventExists(r1));
  EXPECT_FALSE(Bdd->IsIdEventExists(r2));  // réservé, jamais écrit
  EXPECT_EQ(Bdd->GetNbEvenements(), 3);
  EXPECT_EQ(Bdd->GetNbEvenementPers(9), 2);
}

TEST_F(EvenementsBddTest, UnePersonneSeChargeEnDeuxPassesEtSEnregistreEnPlace) {
  // Personne 5 : trois événements à elle, un champ, et l'union avec 7 au rang 2 chez 5.
  TEvenement a = Naissance(5), b = Naissance(5), u = Naissance(7, 5);
  b.Enreg.SetLibelle("DECES");
  u.Enreg.SetLibelle("MARIAGE");
  TChpsSimple p(Bdd.get());
  p.Enreg.SetLibelle("PROFESSION");
  p.Enreg.SetDonnee("meunier");
  p.Enreg.NoPersA = 5;
  std::vector<TEvenement*> evens{&a, &u, &b};
  std::vector<TChpsSimple*> chps{&p};
  EXPECT_EQ(Bdd->EnregistrerChpsDePersonne(5, evens, chps), 4);
  EXPECT_EQ(Compte("SELECT RANG_B FROM Evenements WHERE ID = " + std::to_string(u.No())), 2);
  EXPECT_EQ(Compte("SELECT RANG_A FROM Evenements WHERE ID = " + std::to_string(b.No())), 3);

  std::vector<std::pair<std::string, int>> vus;
  Bdd->ParcoursChpsDePersonne(
      5, [&](TEvenement& e, int pos) { vus.emplace_back(e.Enreg.Libelle, pos); },
      [&](TChpsSimple& c, int pos) { vus.emplace_back(c.Enreg.Libelle, pos); });
  const std::vector<std::pair<std::string, int>> attendus{
      {"NAISSANCE", -1}, {"PROFESSION", -1}, {"DECES", -1}, {"MARIAGE", 1}};
  EXPECT_EQ(vus, attendus);

  // Rien de changé : rien d'écrit.
  EXPECT_EQ(Bdd->EnregistrerChpsDePersonne(5, evens, chps), 0);

  // Le décès retiré de la liste est détaché de la personne, pas effacé ; un neuf est inséré.
  TEvenement neuf = Naissance(5);
  neuf.Enreg.SetLibelle("INHUMATION");
  std::vector<TEvenement*> apres{&a, &u, &neuf};
  EXPECT_EQ(Bdd->EnregistrerChpsDePersonne(5, apres, chps), 2);
  EXPECT_EQ(Compte("SELECT NoPersA FROM Evenements WHERE ID = " + std::to_string(b.No())), 0);
  EXPECT_EQ(Compte("SELECT RANG_A FROM Evenements WHERE ID = " + std::to_string(neuf.No())), 3);
  EXPECT_EQ(Bdd->GetNbEvenementPers(5), 3);
}

TEST_F(EvenementsBddTest, PersonneSupprimeeCacheSesLignesEtLesRetrouve) {
  TEvenement seul = Naissance(5), couple = Naissance(5, 7), autre = Naissance(7);
  Bdd->EnregistrementEven(&seul);
  Bdd->EnregistrementEven(&couple);
  Bdd->EnregistrementEven(&autre);
  Bdd->MasquerChpsOfPerson(5, false);
  EXPECT_EQ(Bdd->GetNbEvenementPers(5), 0);
  EXPECT_EQ(Bdd->GetNbEvenementPers(7), 1);  // l'union n'apparaît plus chez le conjoint
  EXPECT_EQ(Compte("SELECT NoPersB FROM Evenements WHERE ID = " + std::to_string(couple.No())), -7);
  std::set<long> negatifs;
  Bdd->GetListIdPersNegatif(negatifs);
  EXPECT_EQ(negatifs, (std::set<long>{-7, -5}));
  // Cacher deux fois ne change rien de plus.
  Bdd->MasquerChpsOfPerson(5, false);
  Bdd->MasquerChpsOfPerson(5, true);
  EXPECT_EQ(Bdd->GetNbEvenementPers(5), 2);
  EXPECT_EQ(Bdd->GetNbEvenementPers(7), 2);
}

TEST_F(EvenementsBddTest, ParcoursSurUnSecondCurseurPendantDesEcritures) {
  for (int i = 0; i < 5; ++i) {
    TEvenement ev = Naissance(10 + i);
    if (i % 2) ev.Enreg.SetLibelle("DECES");
    Bdd->EnregistrementEven(&ev);
  }
  Bdd->BeginParcoursEvens("NAISSANCE");
  TEvenement ev(Bdd.get());
  std::vector<long> vus;
  while (Bdd->GetEvenParcours(&ev)) {
    vus.push_back(ev.Enreg.NoPersA);
    ev.Enreg.SetDonnee("revu");
    Bdd->SetEvenement(&ev, true);  // écrire pendant le parcours ne le dérange pas
  }
  Bdd->EndParcoursEvens();
  EXPECT_EQ(vus, (std::vector<long>{10, 12, 14}));
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE Donnee = 'revu'"), 3);
  Bdd->BeginParcoursEvens("", 13);
  EXPECT_TRUE(Bdd->GetEvenParcours(&ev));
  EXPECT_EQ(ev.Enreg.Libelle, "DECES");
  EXPECT_FALSE(Bdd->GetEvenParcours(&ev));
  Bdd->BeginParcoursEvens();
  EXPECT_TRUE(Bdd->GetEvenParcours(&ev, 3));  // saute trois lignes
  EXPECT_EQ(ev.Enreg.NoPersA, 13);
  Bdd->EndParcoursEvens();
}

TEST_F(EvenementsBddTest, ChampSimpleDevenuEvenementEtRequetesDEntretien) {
  for (int i = 0; i < 3; ++i) {
    TChpsSimple c(Bdd.get());
    c.Enreg.SetLibelle("PROFESSION");
    c.Enreg.SetDonnee("forgeron");
    c.Enreg.NoPersA = 20 + i;
    Bdd->EnregistrementChpsSimple(&c);
  }
  TChpsSimple titre(Bdd.get());
  titre.Enreg.SetLibelle("TITRE");
  titre.Enreg.NoPersA = 20;
  Bdd->EnregistrementChpsSimple(&titre);
  EXPECT_EQ(Bdd->ChpsSimpleEven("PROFESSION"), 3);
  EXPECT_EQ(Bdd->GetNbChpsSimples(), 1);
  EXPECT_EQ(Bdd->GetNbEvenements(), 3);
  TEvenement prof(Bdd.get());
  EXPECT_TRUE(Bdd->LectureEven("PROFESSION", &prof, 21));
  EXPECT_EQ(prof.Enreg.Donnee, "forgeron");
  // Un libellé avec apostrophe passe en paramètre, sans rien casser.
  Bdd->RenameEven("PROFESSION", "MÉTIER D'ART");
  EXPECT_TRUE(Bdd->DataExists("MÉTIER D'ART", 22));
  Bdd->DeleteNoPers(21);
  EXPECT_EQ(Bdd->GetNbEvenements(), 1);
  Bdd->SupprimeEvenDefinitvement(prof.No());
  EXPECT_FALSE(Bdd->IsIdEventExists(prof.No()));
}

TEST_F(EvenementsBddTest, RequetesDesEcransParFiltresLies) {
  TEvenement a = Naissance(5, 0, "01/01/1850"), b = Naissance(6, 7, "01/01/1870"), c = Naissance(8, 0, "01/01/1900");
  b.Enreg.SetLibelle("MARIAGE");
  c.Enreg.Lieu = 9;
  for (TEvenement* e : {&c, &b, &a}) Bdd->EnregistrementEven(e);
  std::vector<long> ids;
  TStructFilterEvent f;
  Bdd->ApplyFilterEvent(f, ids);
  EXPECT_EQ(ids, (std::vector<long>{a.No(), b.No(), c.No()}));  // par _DATE
  f.Lieu = 4;
  f.DateMin = 18600000;
  Bdd->ApplyFilterEvent(f, ids);
  EXPECT_EQ(ids, (std::vector<long>{b.No()}));
  f = TStructFilterEvent();
  f.Libelle = "MARIAGE";
  std::set<long> personnes;
  Bdd->GetFilteredEventPerson(f, personnes);
  EXPECT_EQ(personnes, (std::set<long>{6, 7}));
  f.Libelle = "l'autre";  // une apostrophe liée, pas collée dans la requête
  Bdd->ApplyFilterEvent(f, ids);
  EXPECT_TRUE(ids.empty());
  Bdd->FiltreEventByLieuDate(4, 0, 18600000, ids);
  EXPECT_EQ(ids, (std::vector<long>{a.No()}));
  Bdd->ListePersonneLieux(4, personnes);
  EXPECT_EQ(personnes, (std::set<long>{5, 6, 7}));
  TIllustration i(Bdd.get());
  i.NoEven = c.No();
  i.SetChemin("Images/c.jpg");
  Bdd->EnregistrementIllustration(&i);
  Bdd->GetAllEventWithImages(ids);
  EXPECT_EQ(ids, (std::vector<long>{c.No()}));
  TEvenement cite = Naissance(12);
  cite.Enreg.PersAssocieesChargees = true;
  cite.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(40), 2, 3});
  cite.Enreg.AjoutPersAssociee(TPersAssociee{TLienPers(41), 2, 1});
  Bdd->EnregistrementEven(&cite);
  Bdd->ListePersonneParenteQualite(2, 0, personnes);
  EXPECT_EQ(personnes, (std::set<long>{40, 41}));
  Bdd->ListePersonneParenteQualite(2, 3, personnes);
  EXPECT_EQ(personnes, (std::set<long>{40}));
  EXPECT_EQ(Bdd->GetLastPersonEdit(), 0);  // aucun champ simple écrit : aucune date
  TChpsSimple titre(Bdd.get());
  titre.Enreg.SetLibelle("TITRE");
  titre.Enreg.NoPersA = 6;
  Bdd->EnregistrementChpsSimple(&titre);
  EXPECT_EQ(Bdd->GetLastPersonEdit(), 6);
  EXPECT_THAT(Bdd->GetDateLastModif(6), ::testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}"));
  EXPECT_EQ(Bdd->GetDateLastModif(5), "");
}

TEST_F(EvenementsBddTest, UneRequeteQuiEchoueDonneLeMessageFrancaisEtGardeLeValide) {
  TEvenement ev = Naissance(5);
  Bdd->EnregistrementEven(&ev);
  Bdd->Base().exec("DROP TABLE Sources");
  TSource s(Bdd.get());
  s.NoEven = ev.No();
  s.SetType("Acte");
  EXPECT_THAT([&] { Bdd->EnregistrementSource(&s); },
              ::testing::ThrowsMessage<ERqBase>(StartsWith("Une erreur s'est produite sur la base Famille.adb")));
  // Une personne dont l'enregistrement échoue au milieu ne laisse aucune de ses lignes.
  TEvenement a = Naissance(9), b = Naissance(9);
  b.Enreg.SourcesChargees = true;  // sa liste de sources ira dans la table disparue
  b.Enreg.AjoutSource(1);
  std::vector<TEvenement*> evens{&a, &b};
  EXPECT_THROW(Bdd->EnregistrerChpsDePersonne(9, evens, {}), ERqBase);
  EXPECT_EQ(Bdd->GetNbEvenementPers(9), 0);
  Bdd.reset();
  TModuleBDD relue(Adb, "5.90");
  ASSERT_TRUE(relue.OpenDataBase());
  TEvenement lu(&relue, ev.No());
  EXPECT_EQ(lu.Enreg.Libelle, "NAISSANCE");
}

// Les deux sortes de lignes ensemble, un champ du catalogue porté sur ses lignes, et les
// requêtes des écrans sur les champs FAVORIS et DDMF.
TEST_F(EvenementsBddTest, ParcoursDesDonneesEtChampsParLibelle) {
  auto champ = [&](long no, const char* libelle, const char* donnee) {
    TChpsSimple c(Bdd.get());
    c.Enreg.SetLibelle(libelle);
    c.Enreg.SetDonnee(donnee);
    c.Enreg.NoPersA = no;
    Bdd->EnregistrementChpsSimple(&c);
    return c.Enreg.No;
  };
  TEvenement n5 = Naissance(5);
  Bdd->EnregistrementEven(&n5);
  const long prof = champ(5, "PROFESSION", "Meunier");
  const long res = champ(6, "RESIDENCE", "Rue Haute");
  TEvenement n6 = Naissance(6);
  Bdd->EnregistrementEven(&n6);

  // Dans l'ordre des numéros, chaque ligne dans l'objet de sa sorte.
  TEvenement ev;
  TChpsSimple c;
  std::vector<std::pair<long, long>> vus;  // (numéro d'événement, numéro de champ)
  Bdd->BeginParcoursDonnees();
  while (Bdd->GetDataParcours(&ev, &c)) vus.emplace_back(ev.Enreg.No, c.Enreg.No);
  Bdd->EndParcoursDonnees();
  EXPECT_EQ(vus, (std::vector<std::pair<long, long>>{{n5.No(), 0}, {0, prof}, {0, res}, {n6.No(), 0}}));
  EXPECT_FALSE(Bdd->GetDataParcours(&ev, &c));  // fermé
  // Filtré par personne, sans objet pour les champs : ils sont passés.
  vus.clear();
  Bdd->BeginParcoursDonnees("", 6);
  while (Bdd->GetDataParcours(&ev, nullptr)) vus.emplace_back(ev.Enreg.No, 0);
  EXPECT_EQ(vus, (std::vector<std::pair<long, long>>{{n6.No(), 0}}));

  // La résidence devient un événement ; une seconde fois, rien ne change.
  EXPECT_EQ(Bdd->UpdateResidence(), 1);
  EXPECT_EQ(Bdd->UpdateResidence(), 0);
  EXPECT_TRUE(Bdd->NoEvenExists(res));
  // Renommer et changer de sorte : seules les lignes du libellé, comptées si elles changent.
  EXPECT_EQ(Bdd->ModifChampsAvecLeLibelle("PROFESSION", "METIER", -1), 1);
  EXPECT_EQ(Bdd->ModifChampsAvecLeLibelle("METIER", "", 1), 0);  // déjà champ simple
  EXPECT_EQ(Bdd->ModifChampsAvecLeLibelle("METIER", "", 0), 1);
  EXPECT_EQ(Bdd->ModifChampsAvecLeLibelle("NAISSANCE", "NAISSANCE", 0), 0);
  EXPECT_EQ(TexteBrut("SELECT LibelleChamps FROM Evenements WHERE ID = " + std::to_string(prof)), "METIER");
  EXPECT_TRUE(Bdd->NoEvenExists(prof));
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE LibelleChamps = 'NAISSANCE'"), 2);

  // Favoris : un texte vide ou "0" ne compte pas ; une personne cachée non plus.
  champ(9, "FAVORIS", "1");
  champ(3, "FAVORIS", "Oui");
  champ(4, "FAVORIS", "0");
  champ(8, "FAVORIS", "");
  champ(-2, "FAVORIS", "1");
  std::vector<long> favoris;
  Bdd->GetPersonFavorite(favoris);
  EXPECT_EQ(favoris, (std::vector<long>{3, 9}));
  // Dates de dernière modification : la plus récente d'abord, à égalité par numéro.
  champ(12, "DDMF", "05/01/1999 10:00:00");
  champ(11, "DDMF", "31/12/1998 23:59:59");
  champ(10, "DDMF", "05/01/1999 10:00:00");
  champ(13, "DDMF", "01/02/2003 08:00:00");
  std::vector<std::pair<long, std::string>> ddmf;
  Bdd->ChargerPersDDMF(ddmf);
  ASSERT_EQ(ddmf.size(), 4u);
  EXPECT_EQ(ddmf[0], (std::pair<long, std::string>{13, "01/02/2003 08:00:00"}));
  EXPECT_EQ(ddmf[1].first, 10);
  EXPECT_EQ(ddmf[2].first, 12);
  EXPECT_EQ(ddmf[3].first, 11);
}

// L'import ôte les index des événements qu'il ne lit pas et les refait à la fin ; un import
// interrompu (jamais fini) les laisse absents, et la prochaine ouverture en écriture les refait.
TEST_F(EvenementsBddTest, IndexOtesLeTempsDUnImportPuisRefaits) {
  auto index = [&] {
    return Compte("SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND tbl_name = 'Evenements'");
  };
  const long complet = index();
  Bdd->BeginImport();
  EXPECT_EQ(index(), complet - 5);
  EXPECT_TRUE(Bdd->IndexExiste("Evenements", "ParNoPersA"));  // lu par l'enregistrement d'une personne
  TEvenement e(Bdd.get());
  e.Enreg.SetLibelle("NAISSANCE");
  e.Enreg.NoPersA = 1;
  ASSERT_TRUE(Bdd->EnregistrementEven(&e));
  Bdd->EndImport();
  EXPECT_EQ(index(), complet);
  EXPECT_EQ(Compte("SELECT COUNT(*) FROM Evenements WHERE LibelleChamps = 'NAISSANCE'"), 1);
  // Interrompu après un premier paquet validé (1 000 lignes) : les index ôtés le sont pour de
  // bon, la suite de l'import est perdue avec l'objet détruit.
  Bdd->BeginImport();
  for (int k = 0; k < 1100; ++k) {
    TEvenement ev(Bdd.get());
    ev.Enreg.SetLibelle("RESIDENCE");
    ev.Enreg.NoPersA = 2;
    ASSERT_TRUE(Bdd->EnregistrementEven(&ev));
  }
  Bdd.reset();
  {
    TModuleBDD lecture(Adb, "5.90", TAccesDossier::LectureSeule);
    ASSERT_TRUE(lecture.OpenDataBase());
    SQLite::Statement q(lecture.Base(),
                        "SELECT COUNT(*) FROM sqlite_master WHERE type = 'index' AND tbl_name = 'Evenements'");
    q.executeStep();
    EXPECT_EQ(q.getColumn(0).getInt64(), complet - 5);  // rien ne s'écrit en lecture seule
  }
  Bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
  ASSERT_TRUE(Bdd->OpenDataBase());
  EXPECT_EQ(index(), complet);
}

}  // namespace
}  // namespace rqbase
