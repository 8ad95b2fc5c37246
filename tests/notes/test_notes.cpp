// Le fichier des notes et ses curseurs : disposition des blocs, reprise des chaînes RTF,
// en-têtes, lecture en lot, données abîmées, pannes d'écriture, branchement au dossier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "notes_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/notes/fic_notes.h"
#include "rqbase/notes/note.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/erreur.h"
#include "../storage/dossier_essai.h"

namespace rqbase {
namespace {

using essai::Bloc;
using essai::Fait;
using essai::FichierNotes;
using essai::kNot;
using testing::StrEq;
using testing::ThrowsMessage;

const std::string kRtf = "{\\rtf1\\ansi ";

// Un texte RTF de `n` caractères exactement (n >= 12).
std::string Rtf(size_t n, char remplissage = 'a') {
  std::string s = kRtf;
  while (s.size() < n) s += static_cast<char>(remplissage + s.size() % 26);
  s.resize(n);
  return s;
}

class NotesTest : public testing::Test {
 protected:
  void TearDown() override { TFichierBrut::Pannes().Raz(); }
  // Un fichier posé à la main, puis ouvert.
  std::unique_ptr<essai::TDossierNotes> Pose(const std::string& octets, bool lectureSeule = false) {
    Disque.Pose(kNot, TDisqueMemoire::TOctets(octets.begin(), octets.end()));
    return std::make_unique<essai::TDossierNotes>(false, lectureSeule);
  }
  // Une note neuve : en-tête pris par NouvelleFiche, puis le texte.
  long Ecrit(TFicNotes* fic, long entete, const std::string& titre, const std::string& texte) {
    TNote note(fic, entete);
    if (entete == 0) note.NouvelleFiche(entete);
    std::string t = texte;
    note.ModifNote(titre, t);
    return note.NoFiche;
  }
  std::string Lit(TFicNotes* fic, long entete, const std::string& titre) {
    TNote note(fic, entete);
    return note.LectureNote(titre);
  }
  TDisqueMemoire::TOctets Octets() const { return Disque.Contenu(kNot); }

  TDisqueMemoire Disque;
  TDisqueMemoire::TInstallation Installation{Disque};
};

TEST_F(NotesTest, DispositionDesBlocsOctetParOctet) {
  essai::TDossierNotes d(true);
  ASSERT_EQ(Octets().size(), 512u);
  EXPECT_EQ(Bloc(Disque, 0).Suivant, 0);

  const long entete = Ecrit(d.Fic(), 0, "Générale", "Né à Paris\r\n");
  EXPECT_EQ(entete, 1);
  ASSERT_EQ(Octets().size(), 3u * 512);
  // Bloc 0 : le nombre de blocs dans Suivant, le reste à zéro.
  const auto b0 = Bloc(Disque, 0);
  EXPECT_EQ(b0.Suivant, 2);
  EXPECT_EQ(std::string(b0.Texte, 508), std::string(508, '\0'));
  // Bloc 1 : l'en-tête de la personne ; bloc 2 : le texte, seul de sa chaîne.
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "Générale,2");
  EXPECT_EQ(Bloc(Disque, 1).Suivant, -1);
  EXPECT_STREQ(Bloc(Disque, 2).Texte, "Né à Paris\r\n");
  EXPECT_EQ(Bloc(Disque, 2).Suivant, 0);

  // Un titre avec blanc et virgule passe par le texte à virgules, entre guillemets.
  Ecrit(d.Fic(), entete, "Acte, copie", "x\r\n");
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "Générale,2,\"Acte, copie\",3");
  d.Rouvre();
  EXPECT_EQ(d.Fic()->NbBlocs(), 3);
  EXPECT_EQ(Lit(d.Fic(), entete, "acte, COPIE"), "x\r\n");
}

TEST_F(NotesTest, ChaineRtfRepriseEtAgrandie) {
  essai::TDossierNotes d(true);
  // 507 caractères tiennent dans un bloc.
  const long entete = Ecrit(d.Fic(), 0, "Générale", Rtf(507));
  EXPECT_EQ(d.Fic()->NbBlocs(), 2);
  EXPECT_EQ(Bloc(Disque, 2).Suivant, 0);
  EXPECT_EQ(Lit(d.Fic(), entete, "Générale"), Rtf(507));

  // Plus long : le premier bloc est repris, la chaîne grandit de blocs neufs.
  Ecrit(d.Fic(), entete, "Générale", Rtf(1200, 'b'));
  EXPECT_EQ(d.Fic()->NbBlocs(), 4);
  EXPECT_EQ(Bloc(Disque, 2).Suivant, 3);
  EXPECT_EQ(Bloc(Disque, 3).Suivant, 4);
  EXPECT_EQ(Bloc(Disque, 4).Suivant, 0);
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "Générale,2");
  EXPECT_EQ(Lit(d.Fic(), entete, "Générale"), Rtf(1200, 'b'));

  // Plus court : les blocs sont repris dans l'ordre, la queue reste injoignable.
  const auto avant = Octets().size();
  Ecrit(d.Fic(), entete, "Générale", Rtf(600, 'c'));
  EXPECT_EQ(Octets().size(), avant);
  EXPECT_EQ(d.Fic()->NbBlocs(), 4);
  EXPECT_EQ(Bloc(Disque, 3).Suivant, 0);
  EXPECT_STREQ(Bloc(Disque, 4).Texte, Rtf(1200, 'b').substr(1014).c_str());
  EXPECT_EQ(Lit(d.Fic(), entete, "Générale"), Rtf(600, 'c'));

  // Un texte vide sur une note RTF la supprime : le titre part, les blocs restent.
  std::string vide;
  TNote note(d.Fic(), entete);
  EXPECT_FALSE(note.ModifNote("Générale", vide));
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "");
  EXPECT_EQ(Bloc(Disque, 1).Suivant, -1);
  EXPECT_EQ(d.Fic()->NbBlocs(), 4);
}

TEST_F(NotesTest, TexteOrdinaireJamaisRepris) {
  essai::TDossierNotes d(true);
  const long entete = Ecrit(d.Fic(), 0, "G", "premier texte\r\n");
  EXPECT_EQ(Bloc(Disque, 1).Texte, std::string("G,2"));
  Ecrit(d.Fic(), entete, "G", "second\r\n");
  // Une chaîne neuve au bloc 3 ; l'ancienne reste telle quelle.
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "G,3");
  EXPECT_STREQ(Bloc(Disque, 2).Texte, "premier texte\r\n");
  EXPECT_EQ(Lit(d.Fic(), entete, "G"), "second\r\n");
  // Un texte vide sur une note ordinaire ne fait rien, et un texte vide sur un titre neuf
  // n'écrit rien.
  const auto avant = Octets();
  std::string vide;
  TNote note(d.Fic(), entete);
  EXPECT_FALSE(note.ModifNote("G", vide));
  EXPECT_FALSE(note.ModifNote("Autre", vide));
  EXPECT_EQ(Octets(), avant);
  EXPECT_EQ(note.Liste.CommaText(), "G,3");
}

TEST_F(NotesTest, EnTetesLusEtEcrits) {
  const std::string trop = "T" + std::string(600, 'x');
  auto d = Pose(FichierNotes(4, {Fait("Vide,,Impair", -1), Fait("A,3,B,4", -1), Fait("texte A\r\n", 0),
                                 Fait("{\\rtf1 B}", 0)}));
  // Un titre à la position vide : note vide, n'existe pas ; un nombre impair reçoit une
  // position vide.
  TNote n1(d->Fic(), 1);
  EXPECT_EQ(n1.Liste.Count(), 4);
  EXPECT_EQ(n1.Liste[3], "");
  EXPECT_FALSE(n1.Existe("Vide"));
  EXPECT_EQ(n1.LectureNote("Vide"), "");
  EXPECT_EQ(n1.GetPositionTitre("Absent"), 0);
  // Titre vide : la première paire ; casse ignorée.
  TNote n2(d->Fic(), 2);
  EXPECT_EQ(n2.GetPositionTitre(""), 3);
  EXPECT_EQ(n2.GetPositionTitre("b"), 4);
  EXPECT_TRUE(n2.Existe("a"));
  EXPECT_EQ(n2.RecupNoteTxt("A"), "texte A\r\n");
  EXPECT_EQ(n2.RecupNoteTxt("B"), "B");

  // AjoutNoteContenuVide : une seule fois.
  EXPECT_TRUE(n2.AjoutNoteContenuVide("C"));
  EXPECT_FALSE(n2.AjoutNoteContenuVide("c"));
  EXPECT_STREQ(Bloc(Disque, 2).Texte, "A,3,B,4,C,0");
  // SupprimeNote : le titre et son numéro, puis tout avec un titre vide.
  n2.SupprimeNote("B");
  EXPECT_STREQ(Bloc(Disque, 2).Texte, "A,3,C,0");
  n2.SupprimeNote("");
  EXPECT_STREQ(Bloc(Disque, 2).Texte, "");
  EXPECT_EQ(Bloc(Disque, 2).Suivant, -1);
  EXPECT_STREQ(Bloc(Disque, 3).Texte, "texte A\r\n");  // les blocs ne sont pas repris

  // Un en-tête trop long est coupé à 507 caractères.
  n2.SetPositionTitre(trop, 3);
  EXPECT_TRUE(n2.EnregistrementEntete(-3));
  EXPECT_EQ(std::string(Bloc(Disque, 2).Texte), (trop + ",3").substr(0, 507));

  // Un nombre impair n'est pas écrit ; un bloc de texte n'est jamais écrasé par un en-tête.
  const auto avant = Octets();
  n2.Liste.Add("seul");
  EXPECT_FALSE(n2.EnregistrementEntete(-3));
  n2.Liste.Delete(n2.Liste.Count() - 1);
  EXPECT_FALSE(n2.EnregistrementEntete(3));
  n2.Liste.Clear();
  EXPECT_FALSE(n2.EnregistrementEntete(4));
  EXPECT_EQ(Octets(), avant);
  EXPECT_TRUE(n2.EnregistrementEntete(0));
}

TEST_F(NotesTest, EnTeteQuiNEnEstPasPartDansUnBlocNeuf) {
  // La personne désigne un bloc de texte comme en-tête (donnée abîmée) : la note s'écrit,
  // l'en-tête part dans un bloc neuf que l'appelant doit garder ; le texte n'est pas touché.
  auto d = Pose(FichierNotes(1, {Fait("un texte\r\n", 0)}));
  TNote note(d->Fic(), 1);
  std::string texte = "nouvelle\r\n";
  EXPECT_TRUE(note.ModifNote("G", texte));
  EXPECT_EQ(note.NoFiche, 3);
  EXPECT_STREQ(Bloc(Disque, 1).Texte, "un texte\r\n");
  EXPECT_EQ(Bloc(Disque, 3).Suivant, -1);
  EXPECT_EQ(Lit(d->Fic(), 3, "G"), "nouvelle\r\n");
  // Un en-tête abîmé qui se désigne lui-même comme texte RTF : il n'est pas repris.
  {
    auto soi = Pose(FichierNotes(1, {Fait("{\\rtf1,1", 0)}));
    TNote n(soi->Fic(), 1);
    ASSERT_EQ(n.GetPositionTitre("{\\rtf1"), 1);
    std::string t = "{\\rtf1 neuf}";
    EXPECT_TRUE(n.ModifNote("{\\rtf1", t));
    EXPECT_STREQ(Bloc(Disque, 1).Texte, "{\\rtf1,1");
    EXPECT_EQ(Lit(soi->Fic(), n.NoFiche, "{\\rtf1"), "{\\rtf1 neuf}");
  }
  // Sans en-tête du tout, de même.
  TNote sans(d->Fic(), 0);
  texte = "x\r\n";
  EXPECT_TRUE(sans.ModifNote("H", texte));
  EXPECT_EQ(Lit(d->Fic(), sans.NoFiche, "H"), "x\r\n");
}

TEST_F(NotesTest, EcrireAuDelaDuCompteEstRefuse) {
  essai::TDossierNotes d(true);
  Ecrit(d.Fic(), 0, "G", "a\r\n");
  const auto avant = Octets();
  TNote note(d.Fic(), 0);
  const auto bloc = Fait("x", 0);
  EXPECT_THAT([&] { note.EnregistrementElementaire(3, bloc); }, ThrowsMessage<ERqBase>(StrEq("FicNote : Erreur Enreg")));
  EXPECT_THAT([&] { d.Fic()->EcritBlocs(2, 2, &bloc); }, ThrowsMessage<ERqBase>(StrEq("FicNote : Erreur Enreg")));
  // 0 et les numéros négatifs (hors -2) n'écrivent rien, sans erreur.
  EXPECT_FALSE(note.EnregistrementElementaire(0, bloc));
  EXPECT_FALSE(note.EnregistrementElementaire(-7, bloc));
  EXPECT_FALSE(d.EcritureRatee());
  EXPECT_EQ(Octets(), avant);
}

TEST_F(NotesTest, LectureEnLotSuitUneChaineDansLeDesordre) {
  // 3000 blocs : la chaîne part de 1, saute vers la fin, revient, et sort de chaque lot
  // chargé ; la lecture doit donner les morceaux dans l'ordre de la chaîne.
  const long n = 3000;
  std::vector<long> ordre;
  for (long i = 1; i <= n; i += 2) ordre.push_back(i);
  for (long i = n; i >= 2; i -= 2) ordre.push_back(i);
  std::string octets(512 * (n + 1), '\0');
  std::memcpy(octets.data() + 508, &n, 4);
  std::string attendu;
  for (size_t k = 0; k < ordre.size(); ++k) {
    char texte[32];
    std::snprintf(texte, sizeof texte, "[%zu]", k);
    const auto b = Fait(texte, k + 1 < ordre.size() ? static_cast<int32_t>(ordre[k + 1]) : 0);
    std::memcpy(octets.data() + ordre[k] * 512, &b, 512);
    attendu += texte;
  }
  auto d = Pose(octets);
  TNote note(d->Fic(), 0);
  EXPECT_EQ(note.LectureNoteRubrique(1), attendu);
  // Un lot seul : le texte du premier bloc, puis la chaîne tant qu'elle reste dans le lot.
  std::string lot;
  bool suite = false;
  EXPECT_EQ(note.LectureEnLot(1, lot, suite), 1025);
  EXPECT_TRUE(suite);
  EXPECT_EQ(lot, attendu.substr(0, attendu.find("[512]")));
  EXPECT_FALSE(d->EnErreur());
}

TEST_F(NotesTest, LongueNoteEnMemoire) {
  essai::TDossierNotes d(true);
  std::string texte;
  for (int i = 0; texte.size() < 3'000'000; ++i) texte += "Ligne " + std::to_string(i) + " de la note\r\n";
  const long entete = Ecrit(d.Fic(), 0, "Longue", texte);
  EXPECT_EQ(Lit(d.Fic(), entete, "Longue"), texte);
  EXPECT_EQ(d.Fic()->NbBlocs(), 1 + static_cast<long>((texte.size() + 506) / 507));
  // Au-delà de 30000 blocs, le texte est coupé : 30000 × 507 caractères gardés.
  const std::string geant(30001 * 507, 'g');
  const long e2 = Ecrit(d.Fic(), 0, "Géante", geant + "\r\n");
  EXPECT_EQ(Lit(d.Fic(), e2, "Géante"), geant.substr(0, 30000 * 507));
}

TEST_F(NotesTest, DonneesAbimeesSansPlantage) {
  // Une chaîne qui boucle s'arrête à 30000 blocs.
  {
    auto d = Pose(FichierNotes(3, {Fait("G,2", -1), Fait("abc", 3), Fait("de", 2)}));
    const std::string t = Lit(d->Fic(), 1, "G");
    EXPECT_EQ(t.size(), 15000u * 5);
    EXPECT_EQ(t.substr(0, 10), "abcdeabcde");
    EXPECT_FALSE(d->EnErreur());
  }
  // Une chaîne qui sort du fichier, ou vers un numéro négatif, s'arrête là.
  {
    auto d = Pose(FichierNotes(4, {Fait("G,2,H,4,I,-2,J,99", -1), Fait("abc", 77), Fait("x", 0), Fait("def", -5)}));
    EXPECT_EQ(Lit(d->Fic(), 1, "G"), "abc");
    EXPECT_EQ(Lit(d->Fic(), 1, "H"), "def");
    EXPECT_EQ(Lit(d->Fic(), 1, "I"), "");
    EXPECT_EQ(Lit(d->Fic(), 1, "J"), "");
    EXPECT_FALSE(d->EnErreur());
  }
  // Un compte plus grand que le fichier est borné par sa taille ; un fichier coupé au
  // milieu d'un bloc perd ce bloc.
  {
    std::string octets = FichierNotes(2000000000, {Fait("G,2", -1), Fait("abc", 3), Fait("def", 0)});
    octets.resize(octets.size() - 100);
    auto d = Pose(octets);
    EXPECT_EQ(d->Fic()->NbBlocs(), 2);
    EXPECT_EQ(Lit(d->Fic(), 1, "G"), "abc");
    EXPECT_FALSE(d->EnErreur());
  }
  // Un en-tête de notes fait d'octets quelconques, sans zéro final : des titres, pas de plantage.
  {
    TNote::TEnreg e;
    std::memset(&e, '"', sizeof e);
    e.Suivant = -1;
    auto d = Pose(FichierNotes(1, {e}));
    TNote note(d->Fic(), 1);
    EXPECT_EQ(note.Liste.Count() % 2, 0);
    EXPECT_EQ(note.LectureNote(""), "");
  }
  // Nombre négatif de blocs, fichier vide en lecture seule.
  {
    auto d = Pose(FichierNotes(-5, {Fait("x", 0)}));
    EXPECT_EQ(d->Fic()->NbBlocs(), 0);
    EXPECT_EQ(Lit(d->Fic(), 1, ""), "");
  }
  {
    auto d = Pose("", true);
    EXPECT_EQ(d->Fic()->NbBlocs(), 0);
    EXPECT_FALSE(d->EnErreur());
    EXPECT_TRUE(Octets().empty());
  }
}

TEST_F(NotesTest, MenageDesBlocs) {
  auto d = Pose(FichierNotes(5, {Fait("", 0), Fait("", 0), Fait("", 0), Fait("", 0), Fait("", 0)}));
  TNote note(d->Fic(), 0);
  auto menage = [&](const std::string& texte, int32_t suivant) {
    auto e = Fait(texte, suivant);
    std::memset(e.Texte + std::min<size_t>(texte.size(), 508), 'z', 508 - std::min<size_t>(texte.size(), 508));
    note.MenageEnreg(e);
    return std::make_pair(std::string(e.Texte), e.Suivant);
  };
  // Sans CR LF ni \rtf, un bloc de texte compte pour vide ; un en-tête garde son texte.
  EXPECT_EQ(menage("abc\r\ndef", 3).first.substr(0, 8), "abc\r\ndef");
  EXPECT_EQ(menage("{\\rtf1 x", 0).first.substr(0, 8), "{\\rtf1 x");
  EXPECT_EQ(menage("sans fin de ligne", 0).first, "");
  EXPECT_EQ(menage("A,3", -1).first.substr(0, 3), "A,3");
  // L'octet 507 est forcé à zéro.
  EXPECT_EQ(menage("a\r\n", 0).first.size(), 507u);
  // Suivant hors de -1..NbBlocs : 0.
  EXPECT_EQ(menage("a\r\n", 6).second, 0);
  EXPECT_EQ(menage("a\r\n", -2).second, 0);
  EXPECT_EQ(menage("a\r\n", 5).second, 5);
  EXPECT_EQ(menage("a\r\n", -1).second, -1);
}

TEST_F(NotesTest, ChargeNoteStylesEtNoteVide) {
  essai::TDossierNotes d(true);
  const std::string rtf = "{\\rtf1\\ansi Bonjour\\par le monde}";
  const std::string cachee = "Texte\r\n#Ne pas supprimer : Suggestions lieux a cacher\r\n[Paris][Lyon]\\line fin";
  long entete = Ecrit(d.Fic(), 0, "Rtf", rtf);
  entete = Ecrit(d.Fic(), entete, "Cachée", cachee);
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Rtf", 150, false), rtf);
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Rtf", 151, false), "Bonjour\r\nle monde");
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Cachée", 150, true), "Texte\r\n fin");
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Cachée", 150, false), cachee);
  EXPECT_EQ(d.Fic()->ChargeNote(0, "Rtf", 150, true), "");
  // Style 152 : le texte du booléen, par la fonction des champs quand elle est installée.
  TFicNotes::FixeChargeBoolean([](bool v, int style) { return std::string(v ? "oui" : "non") + std::to_string(style); });
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Rtf", 152, false), "oui152");
  EXPECT_EQ(d.Fic()->ChargeNote(entete, "Absente", 152, false), "non152");
  EXPECT_EQ(d.Fic()->ChargeNote(0, "Rtf", 152, false), "non152");
  TFicNotes::FixeChargeBoolean(nullptr);
  EXPECT_EQ(TFicNotes::ChargeBoolean(true, 152), "");
  EXPECT_EQ(TFicNotes::ChargeBoolean(true, 80), Ressource(1908));

  const std::vector<TLigneNote> lignes = {{true, false, "Absente"}, {true, true, "Rtf"}, {false, false, "Rtf"},
                                          {true, false, "Rtf"}};
  EXPECT_TRUE(d.Fic()->NoteVide(0, -1, lignes));
  EXPECT_FALSE(d.Fic()->NoteVide(entete, -1, lignes));
  EXPECT_TRUE(d.Fic()->NoteVide(entete, 0, lignes));
  EXPECT_TRUE(d.Fic()->NoteVide(entete, 1, lignes));  // cachée
  EXPECT_TRUE(d.Fic()->NoteVide(entete, 2, lignes));  // pas un champ
  EXPECT_FALSE(d.Fic()->NoteVide(entete, 3, lignes));
  EXPECT_TRUE(d.Fic()->NoteVide(entete, 9, lignes));
}

TEST(ClearDeletedPlace, PartieCacheeOtee) {
  const std::string m = "#Ne pas supprimer : Suggestions lieux a cacher";
  EXPECT_EQ(TFicNotes::ClearDeletedPlace("sans marque [x]"), "sans marque [x]");
  EXPECT_EQ(TFicNotes::ClearDeletedPlace("avant " + m + "[a][b] reste"), "avant  reste");
  EXPECT_EQ(TFicNotes::ClearDeletedPlace("t" + m + "\r\n[a]\r\n[b]\\line\r\nfin\r\n"), "tfin");
  // Un crochet fermant d'abord arrête la coupe ; un ouvrant sans fermant coupe jusqu'au bout.
  EXPECT_EQ(TFicNotes::ClearDeletedPlace(m + "x] [y]"), "x] [y]");
  EXPECT_EQ(TFicNotes::ClearDeletedPlace(m + "a [b"), "a ");
}

TEST_F(NotesTest, PannesEtLectureSeule) {
  // Une écriture courte : la note n'est pas annoncée écrite, et le compte du disque ne
  // couvre pas les blocs qui manquent.
  {
    essai::TDossierNotes d(true);
    const long entete = Ecrit(d.Fic(), 0, "G", "a\r\n");
    TFichierBrut::Pannes().EcritureCourteApres(0, ".not");
    TNote note(d.Fic(), entete);
    std::string texte(5000, 'x');
    EXPECT_FALSE(note.ModifNote("H", texte));
    TFichierBrut::Pannes().Raz();
    EXPECT_TRUE(d.EcritureRatee());
    EXPECT_EQ(Bloc(Disque, 0).Suivant, 2);
    EXPECT_STREQ(Bloc(Disque, 1).Texte, "G,2");
    // Rouvert par un dossier neuf (le premier reste en échec d'écriture jusqu'à sa fermeture).
    essai::TDossierNotes relu(false);
    EXPECT_EQ(relu.Fic()->NbBlocs(), 2);
    EXPECT_EQ(Lit(relu.Fic(), entete, "G"), "a\r\n");
    EXPECT_EQ(Lit(relu.Fic(), entete, "H"), "");
  }
  // Lecture seule : rien ne change.
  {
    auto d = Pose(FichierNotes(2, {Fait("G,2", -1), Fait("{\\rtf1 x}", 0)}), true);
    const auto avant = Octets();
    TNote note(d->Fic(), 1);
    std::string texte = "{\\rtf1 y}";
    EXPECT_FALSE(note.ModifNote("G", texte));
    note.SupprimeNote("G");
    long neuf = 0;
    note.NouvelleFiche(neuf);
    EXPECT_EQ(Octets(), avant);
    EXPECT_FALSE(d->EcritureRatee());
  }
  // Une lecture qui échoue lève le drapeau d'erreur et le genre 1.
  {
    auto d = Pose(FichierNotes(2, {Fait("G,2", -1), Fait("a\r\n", 0)}));
    TFichierBrut::Pannes().EchoueLectureApres(0, ".not");
    TNote note(d->Fic(), 1);
    TFichierBrut::Pannes().Raz();
    EXPECT_TRUE(d->EnErreur());
    EXPECT_EQ(d->GenreErreur(), 1);
    EXPECT_EQ(note.Liste.Count(), 0);
  }
}

// Le fichier des notes dans un vrai dossier : créé avec lui, rouvert, ajouté à un dossier
// qui ne l'avait pas, jamais suivi à travers un lien.
TEST(NotesDansLeDossier, OuvertureCreationEtLiens) {
  essai::TDossierTemp temp;
  const std::string not_ = temp.Dossier() + "/Essai.not";
  long entete = 0;
  {
    TGestFichier g(temp.Prs(), true, false, false, false, 1);
    ASSERT_NE(g.FicNotes(), nullptr);
    EXPECT_EQ(essai::Contenu(not_), std::string(512, '\0'));
    TNote note(g.FicNotes(), 0);
    std::string texte = "Une note\r\n";
    EXPECT_TRUE(note.ModifNote("G", texte));
    entete = note.NoFiche;
    g.EcritureEntete();
    EXPECT_FALSE(g.EcritureRatee());
  }
  {
    TGestFichier g(temp.Prs(), false, false, false, false, 0, mcLectureSeule, true);
    EXPECT_EQ(TNote(g.FicNotes(), entete).LectureNote("G"), "Une note\r\n");
  }
  // Un dossier d'avant les notes : en lecture seule rien n'est créé ; en écriture le
  // fichier vient avec son en-tête, sans erreur.
  std::filesystem::remove(not_);
  {
    TGestFichier g(temp.Prs(), false, false, false, false, 0, mcLectureSeule, true);
    EXPECT_FALSE(g.EnErreur());
    EXPECT_FALSE(std::filesystem::exists(not_));
  }
  {
    TGestFichier g(temp.Prs());
    EXPECT_FALSE(g.EnErreur());
    ASSERT_NE(g.FicNotes(), nullptr);
    EXPECT_EQ(g.FicNotes()->NbBlocs(), 0);
  }
  EXPECT_EQ(essai::Contenu(not_), std::string(512, '\0'));
  // Un lien à la place du fichier : jamais suivi, la cible reste intacte.
  std::filesystem::remove(not_);
  const std::string cible = temp.Racine + "/cible";
  essai::Ecrit(cible, "intouchable");
  std::filesystem::create_symlink(cible, not_);
  {
    TGestFichier g(temp.Prs());
    ASSERT_NE(g.FicNotes(), nullptr);
    EXPECT_EQ(g.FicNotes()->Fichier(), nullptr);
    TNote note(g.FicNotes(), 0);
    std::string texte = "x";
    note.ModifNote("G", texte);
  }
  EXPECT_EQ(essai::Contenu(cible), "intouchable");
}

}  // namespace
}  // namespace rqbase
