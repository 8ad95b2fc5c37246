// La date généalogique et tout ce qui se calcule sur elle : la valeur TDateRQ
// (daterq.h), son ordre (ordre_dates.h) et le décompte des jours entre deux dates
// (decompte_jours.h). Les appelants incluent cet en-tête ; le sous-système lui-même
// inclut l'en-tête du concept dont il a besoin.
#pragma once
#include "rqbase/dates/daterq.h"
#include "rqbase/dates/decompte_jours.h"
#include "rqbase/dates/ordre_dates.h"
