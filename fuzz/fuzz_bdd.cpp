// Les octets d'un fichier .adb quelconque (base SQLite abîmée, autre moteur, fichier
// tronqué) lus par TModuleBDD : jamais de plantage ; seule ERqBase, le message de
// restructuration, peut sortir. Le premier octet choisit un dossier modifiable (mise
// à niveau et écriture comprises, et, avec le bit 2, la création des tables
// manquantes) ou en lecture seule.
//
// Tout se passe en mémoire : les octets sont chargés dans une base en mémoire
// (ChargeImage), puis CreateDataBase, OpenDataBase et les lectures suivent les
// mêmes chemins que pour un fichier, sans un seul accès au disque.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/erreur.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  // Chaque base refusée écrit une ligne au journal : des milliers par seconde. Le
  // journal va dans un dossier qui ne peut exister, où AddLog renonce sans bruit,
  // pour ne pas remplir celui de l'utilisateur.
  static const bool journalMuet = ::setenv("XDG_DATA_HOME", "/dev/null", 1) == 0;
  (void)journalMuet;
  if (taille < 1) return 0;
  static TDialogueFixe boite;
  InstalleDialogue(&boite);
  const bool modifiable = donnees[0] & 1;
  try {
    TModuleBDD bdd("F.adb", "5.90", modifiable ? TAccesDossier::Modifiable : TAccesDossier::LectureSeule);
    if (!bdd.ChargeImage(donnees + 1, taille - 1)) return 0;
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
  return 0;
}
