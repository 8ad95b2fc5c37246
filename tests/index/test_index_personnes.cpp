// Index des personnes : lignes d'une personne dans IndexNomPrenoms et en mémoire, reprise des
// identifiants, refus d'une ligne d'une autre personne, fichier .prx gardé puis relu (ou refait
// quand il est abîmé, coupé ou d'un autre dossier), reconstructions et leurs textes.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/journal.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {
namespace {

// Une progression qui garde ses titres et ses textes.
class TProgressionNotee : public TProgression {
 public:
  void Titre(const std::string& t) override { Textes.push_back("T:" + t); }
  void Texte(const std::string& t) override { Textes.push_back(t); }
  std::vector<std::string> Textes;
};

struct TLigneLue {
  long ID;
  std::string Nom, Prenom, NomSoundex, PrenomSoundex;
  int RgNom, RgPrenom;
  bool operator==(const TLigneLue&) const = default;
};

class IndexTest : public testing::Test {
 protected:
  void SetUp() override {
    ::setenv("XDG_DATA_HOME", Temp.Racine.c_str(), 1);
    Gest = std::make_unique<TGestFichier>(Temp.Prs(), true);
    ASSERT_FALSE(Gest->EnErreur());
    Index = Gest->FicIndexPerson();
    ASSERT_NE(Index, nullptr);
    Index->Table();  // chargée d'avance : chaque modification passe aussi par la mémoire
  }
  void TearDown() override {
    Index = nullptr;
    Gest.reset();
    ::unsetenv("XDG_DATA_HOME");
  }
  long Ajoute(const std::string& nom, const std::string& prenoms, char sexe = 'M') {
    TPerson p(Gest->FicPersons());
    p.NouvelleFiche(-3);
    p.SetNom(nom);
    p.SetPrenoms(prenoms);
    p.SetSexe(sexe);
    p.Enregistrement();  // le dossier met l'index à jour
    return p.No();
  }
  void Modifie(long no, const std::string& nom, const std::string& prenoms) {
    TPerson p(Gest->FicPersons(), no);
    p.SetNom(nom);
    p.SetPrenoms(prenoms);
    p.Enregistrement();
  }
  // Les lignes de la table pour une personne, par identifiant.
  std::vector<TLigneLue> Table(long no) {
    std::vector<TLigneLue> r;
    SQLite::Statement q(Gest->ModuleBDD()->Base(),
                        "SELECT ID, Nom, Prenom, NomSoundex, PrenomSoundex, RgNom, RgPrenom FROM IndexNomPrenoms "
                        "WHERE NoPers = ? ORDER BY ID");
    q.bind(1, int64_t(no));
    while (q.executeStep())
      r.push_back({long(q.getColumn(0).getInt64()), TModuleBDD::TexteColonne(q, 1), TModuleBDD::TexteColonne(q, 2),
                   TModuleBDD::TexteColonne(q, 3), TModuleBDD::TexteColonne(q, 4), q.getColumn(5).getInt(),
                   q.getColumn(6).getInt()});
    return r;
  }
  // Les éléments de la mémoire, dans l'ordre de la table triée, en texte "NOM/PRENOM/no".
  std::vector<std::string> Memoire() {
    std::vector<std::string> r;
    TGestEltIndex& t = Index->Table();
    TEltIndex e;
    for (long i = 0; i < t.GetNbElt(); ++i) {
      t.Lit(i, e);
      r.push_back(std::string(e.Enreg.Nom) + "/" + e.Enreg.Prenom + "/" + std::to_string(e.Enreg.NoPers));
    }
    return r;
  }
  void Ferme() {
    Index = nullptr;
    Gest.reset();
  }
  void Rouvre() {
    Gest = std::make_unique<TGestFichier>(Temp.Prs());
    ASSERT_FALSE(Gest->EnErreur());
    Index = Gest->FicIndexPerson();
  }
  std::string Prx() const { return Temp.Dossier() + "/Essai.prx"; }

  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
  TFicIndexPerson* Index = nullptr;
};

TEST_F(IndexTest, UneLigneParNomEtPrenomAuPlusDix) {
  const long a = Ajoute("Dupont;de la Tour", "Jean Paul");
  const std::vector<TLigneLue> lignes = Table(a);
  ASSERT_EQ(lignes.size(), 4u);
  EXPECT_EQ(lignes[0], (TLigneLue{lignes[0].ID, "DUPONT", "JEAN", "D153", "J5", 1, 1}));
  EXPECT_EQ(lignes[1], (TLigneLue{lignes[1].ID, "DUPONT", "PAUL", "D153", "P4", 1, 2}));
  EXPECT_EQ(lignes[2], (TLigneLue{lignes[2].ID, "TOUR", "JEAN", "T6", "J5", 2, 1}));
  EXPECT_EQ(lignes[3], (TLigneLue{lignes[3].ID, "TOUR", "PAUL", "T6", "P4", 2, 2}));
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2", "DUPONT/PAUL/2", "TOUR/JEAN/2", "TOUR/PAUL/2"}));

  const long b = Ajoute("Martin;Léger;Bon", "Émile Ève Zoé Marc Luc");
  const std::vector<TLigneLue> dix = Table(b);
  ASSERT_EQ(dix.size(), 10u);
  EXPECT_EQ(dix[0].Nom + "/" + dix[0].Prenom, "MARTIN/EMILE");
  // Nom dehors, prénom dedans : le dixième est le 2e nom avec le 5e prénom, le 3e nom n'a rien.
  EXPECT_EQ(dix[9].Nom + "/" + dix[9].Prenom, "LEGER/LUC");
  EXPECT_EQ(dix[9].RgNom, 2);
  EXPECT_EQ(dix[9].RgPrenom, 5);
  EXPECT_EQ(Index->Table().GetNbElt(), 14);

  // Ni nom ni prénom : une ligne aux textes vides, rangs 0.
  const long c = Ajoute("", "");
  const std::vector<TLigneLue> vide = Table(c);
  ASSERT_EQ(vide.size(), 1u);
  EXPECT_EQ(vide[0], (TLigneLue{vide[0].ID, "", "", "", "", 0, 0}));
  // Nom de 300 caractères, nom fait de particules et de ponctuation : bornés, jamais plus.
  const long d = Ajoute(std::string(300, 'x'), "(((\"\"\"");
  ASSERT_EQ(Table(d).size(), 1u);
  EXPECT_EQ(Table(d)[0].Nom, std::string(20, 'X'));
  const long e = Ajoute("de la; du ;*?", "Jean");
  ASSERT_EQ(Table(e).size(), 1u);
  EXPECT_EQ(Table(e)[0].Nom, "");
}

TEST_F(IndexTest, IdentifiantsReprisEtMemoireEgaleALaTable) {
  const long a = Ajoute("Dupont", "Jean Paul Louis");
  const std::vector<TLigneLue> avant = Table(a);
  ASSERT_EQ(avant.size(), 3u);
  // Enregistrée deux fois sans changement : rien ne bouge.
  Modifie(a, "Dupont", "Jean Paul Louis");
  EXPECT_EQ(Table(a), avant);
  // Un prénom ôté : les deux premières lignes gardent leurs identifiants, la troisième part.
  Modifie(a, "Dupont", "Jean Louis");
  const std::vector<TLigneLue> apres = Table(a);
  ASSERT_EQ(apres.size(), 2u);
  EXPECT_EQ(apres[0].ID, avant[0].ID);
  EXPECT_EQ(apres[1].ID, avant[1].ID);
  EXPECT_EQ(apres[1].Prenom, "LOUIS");
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2", "DUPONT/LOUIS/2"}));
  // Un nom changé : la ligne est reclassée en mémoire.
  const long b = Ajoute("Martin", "Anne", 'F');
  Modifie(a, "Zola", "Jean");
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"MARTIN/ANNE/3", "ZOLA/JEAN/2"}));
  // Un prénom ajouté reprend d'abord l'identifiant gardé, puis en crée un.
  Modifie(a, "Zola", "Jean Pierre");
  const std::vector<TLigneLue> deux = Table(a);
  ASSERT_EQ(deux.size(), 2u);
  EXPECT_EQ(deux[0].ID, avant[0].ID);
  EXPECT_GT(deux[1].ID, avant[2].ID);
  // Les identifiants reviennent dans la fiche (ses 10 entrées d'index).
  TPerson p(Gest->FicPersons(), a);
  Index->ModifClef(&p, true);
  EXPECT_EQ(p.Enreg.Index[0], deux[0].ID);
  EXPECT_EQ(p.Enreg.Index[1], deux[1].ID);
  EXPECT_EQ(p.Enreg.Index[2], 0);
  // Supprimée : plus aucune ligne, ni dans la table ni en mémoire.
  TPerson s(Gest->FicPersons(), b);
  s.Enreg.Supprime = 'O';
  Index->ModifClef(&s, true);
  EXPECT_TRUE(Table(b).empty());
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"ZOLA/JEAN/2", "ZOLA/PIERRE/2"}));
}

// Une modification faite avant que la mémoire ne serve charge d'abord le fichier s'il vaut : la
// mémoire suit, et le fichier, effacé pendant la session, revient à la fermeture. Sans fichier
// qui vaille, seule la table change et la mémoire se fait d'elle au premier usage.
TEST_F(IndexTest, ModificationAvantUsageSuitLeFichierQuiVaut) {
  Ajoute("Dupont", "Jean");
  Ferme();
  ASSERT_TRUE(std::filesystem::exists(Prx()));
  Rouvre();  // mémoire pas encore chargée
  const long b = Ajoute("Martin", "Luc");
  EXPECT_TRUE(Index->TableChargee());
  EXPECT_TRUE(Index->ChargeeDuFichier());
  EXPECT_FALSE(std::filesystem::exists(Prx()));  // il ne dit plus la vérité : effacé
  EXPECT_EQ(Table(b).size(), 1u);
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2", "MARTIN/LUC/3"}));
  Ferme();
  ASSERT_TRUE(std::filesystem::exists(Prx()));  // réécrit avec la personne ajoutée
  Rouvre();
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2", "MARTIN/LUC/3"}));
  EXPECT_TRUE(Index->ChargeeDuFichier());
  Ferme();

  essai::Ecrit(Prx(), "abîmé");
  Rouvre();
  const long c = Ajoute("Roy", "Paul");
  EXPECT_FALSE(Index->TableChargee());
  EXPECT_FALSE(std::filesystem::exists(Prx()));
  EXPECT_EQ(Table(c).size(), 1u);
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2", "MARTIN/LUC/3", "ROY/PAUL/4"}));
  EXPECT_FALSE(Index->ChargeeDuFichier());
}

TEST_F(IndexTest, AnneesRangeesCommeDuTexte) {
  // Les années viennent de l'estimateur par la couture ; ici des valeurs fixes.
  Index->Fourchette = [](TPerson& p, float& mn, float& mx) {
    if (p.Enreg.Sexe == 'F') return false;  // inconnue
    mn = p.Enreg.Sexe == 'M' ? 1900.5f : 900.2f;
    mx = mn + 60;
    return true;
  };
  Ajoute("Roy", "Jean", '?');
  Ajoute("Roy", "Jean", 'M');
  Ajoute("Roy", "Jean", 'F');
  TGestEltIndex& t = Index->Table();
  ASSERT_EQ(t.GetNbElt(), 3);
  std::vector<int> annees;
  TEltIndex e;
  for (long i = 0; i < 3; ++i) {
    t.Lit(i, e);
    annees.push_back(e.Enreg.AnneeMin);
  }
  // 0 (inconnue) puis "1900" avant "900".
  EXPECT_EQ(annees, (std::vector<int>{0, 1900, 900}));
  t.Lit(1, e);
  EXPECT_EQ(e.Enreg.AnneeMax, 1960);
  short mn = 1, mx = 1;
  TIndexPerson::SetAnneeMinAnneeMax(nullptr, NAN, 1000000.0f, mn, mx);
  EXPECT_EQ(mn, 0);
  EXPECT_EQ(mx, 0);
}

TEST_F(IndexTest, FormeSerialiseeDUneLigne) {
  TEnregIndex r;
  r.SetNom("DUPONT");
  r.SetPrenom("JEAN");
  r.SetNomSoundex("D153");
  r.SetPrenomSoundex("J5");
  r.AnneeMin = 1850;
  r.AnneeMax = -2;
  r.NoPers = 0x01020304;
  r.RgNom = 1;
  r.RgPrenom = 2;
  r.TypePersonne = 'P';
  r.FicheSupprimee = ' ';
  r.Sexe = ' ';
  const TEltIndex elt(r, 7);
  char tampon[80];
  const char* fin = elt.Ecrit(tampon);
  const std::string octets(static_cast<const char*>(tampon), fin);
  // clang-format off
  EXPECT_EQ(octets, std::string("\x06" "DUPONT" "\x04" "JEAN" "\x04" "D153" "\x02" "J5"
                                "\x3A\x07" "\xFE\xFF" "\x04\x03\x02\x01" "\x01\x00" "\x02\x00" "\x00\x00"
                                "P" "\x00" " ",
                                37));
  // clang-format on
  EXPECT_EQ(elt.GetTaille(), 37);
  TEltIndex relu;
  relu.Lit(tampon, 37);
  TEnregIndex attendu = r;
  attendu.Sexe = 0;  // un sexe blanc s'écrit et se relit 0
  EXPECT_TRUE(relu.Enreg.MemesColonnes(attendu));
  EXPECT_EQ(relu.EltCmp(elt), 0);
  // L'ordre : le nom puis le prénom décident le plus souvent ; un octet 1 dans un nom abîmé
  // se compare comme dans la clé entière.
  TEnregIndex x, y;
  x.SetNom("DUPON");
  x.SetPrenom("ZOE");
  y.SetNom("DUPONT");
  y.SetPrenom("ANNE");
  EXPECT_LT(CompareLignesIndex(x, y), 0);
  EXPECT_GT(CompareLignesIndex(y, x), 0);
  x.SetNom(
      "A\x01"
      "B");
  y.SetNom("A");
  y.SetPrenom("C");
  EXPECT_LT(CompareLignesIndex(x, y), 0);  // "A 1 B 1 ..." contre "A 1 C ..."
  y = x;
  y.NoPers = 12;
  x.NoPers = 9;
  EXPECT_LT(CompareLignesIndex(y, x), 0);  // numéros en texte : "12" avant "9"
  // Plus longue forme : 69 octets. Relue coupée, elle reste bornée.
  TEnregIndex l;
  l.SetNom(std::string(20, 'A'));
  l.SetPrenom(std::string(20, 'B'));
  l.SetNomSoundex("A111");
  l.SetPrenomSoundex("B111");
  EXPECT_EQ(TEltIndex(l, 0).GetTaille(), TEltIndex::kTailleMax);
  const char abime[] =
      "\xFF"
      "ABC";
  relu.Lit(abime, 4);
  EXPECT_STREQ(relu.Enreg.Nom, "ABC");
  EXPECT_STREQ(relu.Enreg.Prenom, "");
}

TEST_F(IndexTest, LigneDUneAutrePersonneRefuseeEtJournalisee) {
  const long a = Ajoute("Dupont", "Jean");
  const long b = Ajoute("Martin", "Luc");
  const long idA = Table(a)[0].ID;
  TIndexPerson intrus(Index);
  intrus.Enreg.SetNom("FAUX");
  intrus.Enreg.NoPers = int32_t(b);
  EXPECT_EQ(intrus.Enregistrement(idA, Index, false), -1);
  EXPECT_EQ(Table(a)[0].Nom, "DUPONT");                       // la ligne n'a pas bougé
  EXPECT_EQ(intrus.Enregistrement(99999, Index, false), -1);  // ligne absente
  std::ifstream journal(FichierJournal());
  const std::string texte((std::istreambuf_iterator<char>(journal)), std::istreambuf_iterator<char>());
  EXPECT_NE(texte.find("Erreur modif Index"), std::string::npos);
  EXPECT_NE(texte.find("Nom : FAUX, Prenoms :, ID : " + std::to_string(idA) + " , ID-Conflit : " + std::to_string(a)),
            std::string::npos);
}

TEST_F(IndexTest, FichierGardeRelouRefaitQuandIlNeVautRien) {
  Ajoute("Dupont", "Jean");
  Ajoute("Martin", "Luc Marc");
  const std::vector<std::string> attendu = Memoire();
  Ferme();
  ASSERT_TRUE(std::filesystem::is_regular_file(Prx()));
  const std::string bon = essai::Contenu(Prx());

  Rouvre();
  EXPECT_EQ(Memoire(), attendu);
  EXPECT_TRUE(Index->ChargeeDuFichier());
  Ferme();
  EXPECT_EQ(essai::Contenu(Prx()), bon);  // lu sans rien changer : rien de réécrit

  // Un octet changé, un fichier coupé, un fichier vide, un fichier d'un autre dossier : la
  // mémoire est refaite depuis la table, avec le même contenu.
  std::string change = bon;
  change[20] ^= 0x40;
  TFicIndexPerson::TControle autre;
  {
    TGestEltIndex t;
    TFicIndexPerson::TControle c;
    ASSERT_TRUE(TFicIndexPerson::LitFormeFichier(bon, t, c));
    autre = c;
    autre.IdGenea = "UN-AUTRE-DOSSIER";
    EXPECT_EQ(c.Lignes, 3);
    const std::string etranger = TFicIndexPerson::FormeFichier(t, autre);
    for (const std::string& octets : {change, bon.substr(0, bon.size() / 2), std::string(), etranger}) {
      essai::Ecrit(Prx(), octets);
      Rouvre();
      EXPECT_EQ(Memoire(), attendu);
      EXPECT_FALSE(Index->ChargeeDuFichier());
      Ferme();
      Rouvre();  // refait, puis gardé à la fermeture : relu du fichier cette fois
      EXPECT_EQ(Memoire(), attendu);
      EXPECT_TRUE(Index->ChargeeDuFichier());
      Ferme();
    }
  }
  // Une table changée derrière le fichier (ligne ajoutée par un autre outil) : refait aussi.
  {
    SQLite::Database base(Temp.Dossier() + "/Essai.adb", SQLite::OPEN_READWRITE);
    base.exec(
        "INSERT INTO IndexNomPrenoms (Nom, Prenom, NoPers, TypePersonne, FicheSupprimee, Sexe) "
        "VALUES ('ZOLA', 'EMILE', 1, 'P', ' ', 'M')");
  }
  Rouvre();
  EXPECT_EQ(Memoire().back(), "ZOLA/EMILE/1");
  EXPECT_FALSE(Index->ChargeeDuFichier());
}

TEST_F(IndexTest, LigneHorsDuFichierOuSupprimeeJamaisEnMemoire) {
  Ajoute("Dupont", "Jean");
  {
    SQLite::Database& base = Gest->ModuleBDD()->Base();
    base.exec(
        "INSERT INTO IndexNomPrenoms (Nom, Prenom, NoPers, TypePersonne, FicheSupprimee) VALUES "
        "('FANTOME', 'X', 9999, 'P', ' '), ('NEGATIF', 'X', -4, 'P', ' '), ('EFFACE', 'X', 1, 'P', 'O')");
  }
  Index->ReinitTableIndexBis();
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2"}));
}

TEST_F(IndexTest, TextesHorsASCIIRelusDeLaTable) {
  const long a = Ajoute("Œuvrard", "Æsa");
  EXPECT_EQ(Table(a)[0].Nom, "ŒUVRARD");  // les ligatures restent des ligatures
  Index->ReinitTableIndexBis();
  EXPECT_EQ(Memoire(), std::vector<std::string>{"ŒUVRARD/ÆSA/2"});
}

TEST_F(IndexTest, ReconstructionsEtLeursTextes) {
  Ajoute("Dupont", "Jean");
  Ajoute("Martin", "Luc");
  Gest->ModuleBDD()->Base().exec("DELETE FROM IndexNomPrenoms");
  TProgressionNotee prog;
  ASSERT_TRUE(Index->ReinitTableIndex(&prog));
  EXPECT_EQ(prog.Textes, (std::vector<std::string>{"T:Création des index", "Traitement en cours..."}));
  // La personne 1 du dossier neuf n'a ni nom ni prénom : elle a sa ligne vide.
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"//1", "DUPONT/JEAN/2", "MARTIN/LUC/3"}));
  EXPECT_EQ(Index->LectureEntete(), 3);

  // Abandon : la table d'avant reste entière.
  TProgressionNotee arret;
  arret.DemandeAbandon();
  const long lignes = Index->LectureEntete();
  EXPECT_FALSE(Index->ReinitTableIndex(&arret));
  EXPECT_EQ(Index->LectureEntete(), lignes);

  // Plus de 20 000 lignes : la réparation de la mémoire montre sa progression.
  {
    SQLite::Database& base = Gest->ModuleBDD()->Base();
    SQLite::Transaction tr(base);
    SQLite::Statement q(base,
                        "INSERT INTO IndexNomPrenoms (Nom, Prenom, NoPers, TypePersonne) VALUES (?, 'A', 2, 'P')");
    for (int i = 0; i < 20001; ++i) {
      q.bind(1, "N" + std::to_string(i));
      q.exec();
      q.reset();
    }
    tr.commit();
  }
  TProgressionNotee rep;
  Index->ReinitTableIndexBis(&rep);
  EXPECT_EQ(rep.Textes,
            (std::vector<std::string>{"T:Réparation des index", "Insertion en cours...", "Classement en cours..."}));
  EXPECT_EQ(Index->Table().GetNbElt(), lignes + 20001);
}

TEST_F(IndexTest, DossierEnLectureSeuleJamaisModifie) {
  const long a = Ajoute("Dupont", "Jean");
  Ferme();
  const essai::TInstantane avant = essai::Instantane(Temp.Dossier());
  Gest = std::make_unique<TGestFichier>(Temp.Prs(), false, false, false, false, 0, mcFormulaire, true);
  Index = Gest->FicIndexPerson();
  TPerson p(Gest->FicPersons(), a);
  p.SetNom("Autre");
  Index->ModifClef(&p, true);
  Index->SupprimeClef(&p, true);
  EXPECT_FALSE(Index->ReinitTableIndex());
  EXPECT_EQ(Memoire(), (std::vector<std::string>{"DUPONT/JEAN/2"}));
  Ferme();
  EXPECT_EQ(essai::Instantane(Temp.Dossier()), avant);
}

}  // namespace
}  // namespace rqbase
