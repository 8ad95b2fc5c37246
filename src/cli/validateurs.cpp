#include "validateurs.h"

#include <algorithm>

namespace rqcli {

CLI::Validator EntierAuMoins(long minimum) {
  const std::string attendu = "un entier d'au moins " + std::to_string(minimum);
  return CLI::Validator(
      [minimum, attendu](std::string& s) {
        try {
          size_t lu = 0;
          const long v = std::stol(s, &lu);
          if (lu == s.size() && v >= minimum) return std::string();
        } catch (const std::exception&) {
        }
        return s + " n'est pas " + attendu;
      },
      attendu);
}

CLI::Validator UneValeurParmi(const std::vector<std::string>& valeurs) {
  std::string liste;
  for (size_t i = 0; i < valeurs.size(); ++i)
    liste += (i == 0 ? "" : i + 1 == valeurs.size() ? " ou " : ", ") + valeurs[i];
  return CLI::Validator(
      [valeurs, liste](std::string& s) {
        return std::find(valeurs.begin(), valeurs.end(), s) != valeurs.end() ? std::string()
                                                                              : "la valeur doit être " + liste;
      },
      liste);
}

}  // namespace rqcli
