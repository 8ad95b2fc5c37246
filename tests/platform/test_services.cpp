// Ressources numérotées, dialogue, progression, journal.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/journal.h"
#include "rqbase/platform/progression.h"
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

TEST(Ressources, TexteConnuEtNumeroAbsent) {
  EXPECT_EQ(Ressource(6201), "Création d'un dossier généalogique");
  EXPECT_EQ(Ressource(6200).substr(0, 30), "La généalogie #1 existe déjà !");
  EXPECT_EQ(Ressource(-5), "");
  EXPECT_FALSE(RessourceExiste(99999));
}

TEST(Dialogue, ParDefautNeBloqueJamaisEtSeRemplace) {
  EXPECT_EQ(Dialogue().Question("?", "t", TBoutons::OuiNonAnnuler), ReponseOui);
  TDialogueFixe fixe(ReponseAnnuler);
  InstalleDialogue(&fixe);
  EXPECT_EQ(Dialogue().Question("Encore ?", "Titre", TBoutons::OuiNonAnnuler), ReponseAnnuler);
  EXPECT_EQ(Dialogue().Question("Sans annuler ?", "Titre", TBoutons::OuiNon), ReponseNon);
  EXPECT_EQ(Dialogue().Question("Info", "Titre", TBoutons::Ok), ReponseOk);
  Dialogue().Erreur("Panne", "Titre");
  InstalleDialogue(nullptr);
  ASSERT_EQ(fixe.Questions.size(), 3u);
  EXPECT_EQ(fixe.Questions[0].Texte, "Encore ?");
  EXPECT_EQ(fixe.Erreurs.at(0).Texte, "Panne");
}

TEST(Progression, PositionEtAbandon) {
  TProgression p;
  p.Maximum(10);
  p.Avance();
  p.Avance(3);
  EXPECT_EQ(p.Pos, 4);
  EXPECT_FALSE(p.Abandon());
  p.DemandeAbandon();
  EXPECT_TRUE(p.Abandon());
}

TEST(Journal, UneLigneDateeParEntree) {
  namespace fs = std::filesystem;
  const fs::path dossier = fs::temp_directory_path() / ("rq_journal_" + std::to_string(::getpid()));
  ::setenv("XDG_DATA_HOME", dossier.c_str(), 1);
  AddLog("Erreur modif Index");
  AddLog("deuxième ligne");
  std::ifstream f(FichierJournal());
  std::string l1, l2;
  std::getline(f, l1);
  std::getline(f, l2);
  const std::regex forme(R"(\d\d/\d\d/\d{4} \d\d:\d\d:\d\d .+)");
  EXPECT_TRUE(std::regex_match(l1, forme)) << l1;
  EXPECT_EQ(l1.substr(20), "Erreur modif Index");
  EXPECT_EQ(l2.substr(20), "deuxième ligne");
  fs::remove_all(dossier);
  ::unsetenv("XDG_DATA_HOME");
}

}  // namespace
}  // namespace rqbase
