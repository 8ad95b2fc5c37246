// opstream / ipstream : les flux persistants des tables sauvegardées.
//
// Format : entiers longs sur 32 bits petit-boutistes ; un texte est sa longueur
// (32 bits) puis ses octets ; un pointeur d'objet est un octet de présence (0 ou 1)
// puis l'objet. Un ipstream qui manque d'octets passe en échec, rend des zéros et
// ne lit plus rien : le lecteur teste Bon() et ne fait confiance à aucun compte
// sans le comparer à Restant().
#pragma once
#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>

namespace rqbase {

class opstream {
 public:
  explicit opstream(std::ostream& sortie) : Sortie(&sortie) {}
  void writeLong(int32_t v);
  void writeByte(uint8_t v);
  void writeBytes(const void* donnees, size_t taille);
  void writeString(std::string_view texte);
  bool Bon() const { return Sortie->good(); }

 private:
  std::ostream* Sortie;
};

class ipstream {
 public:
  // Lit un flux positionnable : la taille restante se mesure d'avance.
  explicit ipstream(std::istream& entree);
  int32_t readLong();
  uint8_t readByte();
  // false (et tampon mis à zéro) quand les octets manquent.
  bool readBytes(void* donnees, size_t taille);
  // Un texte plus long que ce qui reste, ou que `tailleMax`, met le flux en échec.
  std::string readString(size_t tailleMax = 1u << 24);
  bool Bon() const { return !Echec; }
  void MetEnEchec() { Echec = true; }
  // Octets encore lisibles.
  int64_t Restant() const { return Echec ? 0 : RestantOctets; }

 private:
  std::istream* Entree;
  int64_t RestantOctets = 0;
  bool Echec = false;
};

}  // namespace rqbase
