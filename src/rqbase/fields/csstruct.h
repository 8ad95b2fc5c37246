// Le catalogue des champs en un seul en-tête : descripteur de champ (TChpCs),
// rôle d'événement standard (TEquivChpCs), catalogue (TDefChpsCs) et son fichier.
#pragma once
#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/equiv_chp_cs.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/fields/table_defaut.h"
