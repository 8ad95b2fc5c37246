#include "rqbase/platform/chemins.h"

#include "rqbase/platform/cp1252.h"

namespace rqbase {

std::filesystem::path CheminOs(const std::string& chemin) { return std::filesystem::path(VersUtf8(chemin)); }

std::string CheminInterne(const std::filesystem::path& chemin) { return DepuisUtf8(chemin.string()); }

}  // namespace rqbase
