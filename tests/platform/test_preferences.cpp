#include "rqbase/platform/preferences.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace rqbase {
namespace {

namespace fs = std::filesystem;

class PreferencesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Fichier = fs::temp_directory_path() / ("rq_pref_" + std::to_string(::getpid())) / "preferences.ini";
    ::setenv("RQBASE_PREFERENCES", Fichier.c_str(), 1);
  }
  void TearDown() override {
    fs::remove_all(Fichier.parent_path());
    ::unsetenv("RQBASE_PREFERENCES");
  }
  fs::path Fichier;
};

TEST_F(PreferencesTest, ValeursParDefautPuisAllerRetour) {
  const std::string section = SectionPreferences();
  EXPECT_EQ(section, "Software\\ZOLT\\Préférence Filiora");
  EXPECT_EQ(LitPreference(section, "Pays de reference", "France"), "France");
  EXPECT_EQ(LitPreferenceEntier(section, "Utiliser le retour arriere des consultations", 1), 1);

  ASSERT_TRUE(EcritPreference(section, "Pays de reference", "Sénégal"));
  ASSERT_TRUE(EcritPreference(section, "Departement de reference", "Côte-d'Or"));
  ASSERT_TRUE(EcritPreferenceEntier(section, "Utiliser le retour arriere des consultations", 0));
  EXPECT_EQ(LitPreference(section, "Pays de reference"), "Sénégal");
  EXPECT_EQ(LitPreference(section, "Departement de reference"), "Côte-d'Or");
  EXPECT_EQ(LitPreferenceEntier(section, "Utiliser le retour arriere des consultations", 1), 0);
  EXPECT_EQ(LitPreference("Software\\ZOLT\\Autre", "Pays de reference", "x"), "x");

  // Le fichier est de l'UTF-8 lisible par un humain.
  std::ifstream f(Fichier);
  std::string contenu((std::istreambuf_iterator<char>(f)), {});
  EXPECT_NE(contenu.find("S\xC3\xA9n\xC3\xA9gal"), std::string::npos);
}

TEST_F(PreferencesTest, FichierAbimeDonneLesDefauts) {
  fs::create_directories(Fichier.parent_path());
  std::ofstream(Fichier) << "[section sans fin\n=== \n";
  EXPECT_EQ(LitPreference(SectionPreferences(), "Pays de reference", "France"), "France");
  EXPECT_EQ(LitPreferenceEntier(SectionPreferences(), "x", 7), 7);
}

}  // namespace
}  // namespace rqbase
