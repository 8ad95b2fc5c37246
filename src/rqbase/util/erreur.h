// ERqBase : la seule exception de la bibliothèque. Son texte est le message
// exact montré à l'utilisateur (Windows-1252), par exemple "FicDupli : Erreur Enreg".
#pragma once
#include <stdexcept>
#include <string>

namespace rqbase {

class ERqBase : public std::runtime_error {
 public:
  explicit ERqBase(const std::string& texte) : std::runtime_error(texte) {}
};

}  // namespace rqbase
