// Textes numérotés : catalogue.
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

constexpr TTexteRessource kTextes[] = {
    {7250, " ou Donnée équivalente"},
    // La ligne de version écrite dans chaque fichier catalogue.
    {7251, "Catalogue des champs 2020"},
};

}  // namespace

std::span<const TTexteRessource> TextesCatalogue() { return kTextes; }

}  // namespace rqbase
