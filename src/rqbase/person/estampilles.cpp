// (en construction)
#include "rqbase/person/gest_pers.h"
