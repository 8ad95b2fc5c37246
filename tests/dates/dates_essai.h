// Outils des tests des dates : une date du calendrier donné, avec son acte.
#pragma once
#include "rqbase/dates/daterq.h"

namespace rqbase::essai {

inline TDateRQ D(const char* acte, char calendrier, const char* date) {
  TDateRQ d(calendrier, date);
  d.SetActe(acte);
  return d;
}

}  // namespace rqbase::essai
