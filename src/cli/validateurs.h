// Les vérifications des valeurs d'options, aux messages en français (ceux de CLI11 sont en
// anglais). Les messages sont des textes internes : l'écriture de l'erreur les convertit.
#pragma once
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace rqcli {

// Un nombre entier au moins égal à `minimum` : « le nombre doit être un entier d'au moins N ».
CLI::Validator EntierAuMoins(long minimum);
// Une des valeurs données : « la valeur doit être a ou b ».
CLI::Validator UneValeurParmi(const std::vector<std::string>& valeurs);

}  // namespace rqcli
