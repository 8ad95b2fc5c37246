// AnalyseDate sur des textes quelconques : jamais de plantage ni d'exception ;
// un texte accepté tient dans les 10 caractères d'une date, un refus rend un code connu.
#include <cstdint>
#include <cstring>
#include <string>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/bo_jours.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  if (taille < 1) return 0;
  static const char kCalendriers[] = {'G', 'R', 'H', 'A', 'g', '?'};
  const char calendrier = kCalendriers[(donnees[0] & 0x7F) % sizeof kCalendriers];
  const bool souple = donnees[0] & 0x80;
  std::string date(reinterpret_cast<const char*>(donnees + 1), taille - 1);
  const std::string tape = date;
  const int code = AnalyseDate(date, calendrier, souple);
  if (code == -1) {
    if (date.size() > 10) __builtin_trap();
    // Un bloc de cinq caractères qui commence par une année (0 à 3000) n'est jamais
    // recoupé en jour et mois : accepté, il garde ses deux premiers chiffres pour jour.
    const bool chiffres4 = tape.size() == 5 && tape.find_first_not_of("0123456789") >= 4 &&
                           static_cast<unsigned char>(tape[4]) > ' ' && std::strchr(" -|_,;.:/*+", tape[4]) == nullptr;
    if (chiffres4 && (calendrier == 'G' || calendrier == 'A' || calendrier == 'g') && std::stoi(tape.substr(0, 4)) <= 3000 &&
        date.compare(0, 2, tape, 0, 2) != 0)
      __builtin_trap();
    // Une date acceptée se relit telle quelle.
    std::string relu = date;
    if (AnalyseDate(relu, calendrier, souple) != -1 && date.find('?') == std::string::npos) __builtin_trap();
    TDateRQ d(calendrier, date);
    d.RecupAnnee(true);
  } else if (code < 0 || code > 9 || code == 5 || code == 6) {
    __builtin_trap();
  }
  return 0;
}
