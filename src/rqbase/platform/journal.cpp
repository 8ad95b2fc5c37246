#include "rqbase/platform/journal.h"

#include <ctime>
#include <fstream>
#include <mutex>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/dossiers_systeme.h"

namespace rqbase {

std::string FichierJournal() { return DossierDonneesUtilisateur() + "rqbase.log"; }

void AddLog(const std::string& texte) {
  static std::mutex verrou;
  const std::time_t maintenant = std::time(nullptr);
  std::tm t{};
  localtime_r(&maintenant, &t);
  char horodatage[32];
  std::strftime(horodatage, sizeof horodatage, "%d/%m/%Y %H:%M:%S", &t);

  std::lock_guard<std::mutex> garde(verrou);
  std::ofstream journal(CheminOs(FichierJournal()), std::ios::app | std::ios::binary);
  if (journal) journal << horodatage << ' ' << texte << '\n';
}

}  // namespace rqbase
