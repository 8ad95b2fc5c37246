// Textes numérotés : calendriers.
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

constexpr TTexteRessource kTextes[] = {
    {0, ""},  // réservé : aucun texte n'a le numéro 0
};

}  // namespace

std::span<const TTexteRessource> TextesCalendriers() { return kTextes; }

}  // namespace rqbase
