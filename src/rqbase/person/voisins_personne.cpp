#include "rqbase/person/voisins_personne.h"

#include "rqbase/storage/contexte_dossier.h"

namespace rqbase {

TVoisinsPersonne* VoisinsDe(TContexteDossier* contexte) { return dynamic_cast<TVoisinsPersonne*>(contexte); }

}  // namespace rqbase
