// Un fichier .adb d'octets quelconques (base SQLite abîmée, autre moteur, fichier
// tronqué) ouvert par TModuleBDD : jamais de plantage ; seule ERqBase, le message
// de restructuration, peut sortir. Le premier octet choisit un dossier modifiable
// (mise à niveau et écriture comprises) ou en lecture seule.
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/erreur.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  namespace fs = std::filesystem;
  if (taille < 1) return 0;
  static TDialogueFixe boite;
  InstalleDialogue(&boite);
  static const fs::path dossier = fs::temp_directory_path() / ("rq_fuzz_bdd_" + std::to_string(::getpid()));
  fs::remove_all(dossier);
  fs::create_directories(dossier);
  const std::string adb = (dossier / "F.adb").string();
  std::ofstream(adb, std::ios::binary).write(reinterpret_cast<const char*>(donnees + 1),
                                             static_cast<std::streamsize>(taille - 1));
  const bool modifiable = donnees[0] & 1;
  try {
    TModuleBDD bdd(adb, "5.90", modifiable ? TAccesDossier::Modifiable : TAccesDossier::LectureSeule);
    if (modifiable && donnees[0] & 2) bdd.CreateDataBase();
    if (bdd.OpenDataBase()) {
      bdd.GetVersionBDD();
      bdd.GetInfoChps("INDEXNAME");
      for (const TTableSchema& t : SchemaBDD())
        for (const TColonneSchema& c : t.Colonnes) bdd.TypeMoteurColonne(t.Nom, c.Nom);
      if (modifiable) {
        bdd.MAJInfoChps("DCUM_STATE", "2");
        bdd.BeginImport();
        bdd.EndImport();
      }
    }
  } catch (const ERqBase&) {
    // Attendu pour une base abîmée : le message à l'utilisateur.
  }
  fs::remove_all(dossier);
  return 0;
}
