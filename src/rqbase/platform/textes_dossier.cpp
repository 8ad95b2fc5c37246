// Textes numérotés du dossier et de ses fichiers.
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

constexpr TTexteRessource kTextes[] = {
    {6200,
     "La généalogie #1 existe déjà !\nElle contient #2 personnes. Si vous souhaitez réellement supprimer ce "
     "dossier, veuillez le supprimer par la palette Outils, puis créer un nouveau dossier.\n\nVoulez-vous "
     "choisir un autre nom pour le nouveau dossier ?"},
    {6201, "Création d'un dossier généalogique"},
};

}  // namespace

std::span<const TTexteRessource> TextesDossier() { return kTextes; }

}  // namespace rqbase
