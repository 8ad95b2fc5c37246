#include "rqbase/util/flux.h"

#include <bit>
#include <cstring>

namespace rqbase {

static_assert(std::endian::native == std::endian::little, "les fichiers sont petit-boutistes");

void opstream::writeLong(int32_t v) { writeBytes(&v, sizeof v); }

void opstream::writeByte(uint8_t v) { writeBytes(&v, 1); }

void opstream::writeBytes(const void* donnees, size_t taille) {
  Sortie->write(static_cast<const char*>(donnees), std::streamsize(taille));
}

void opstream::writeString(std::string_view texte) {
  writeLong(int32_t(texte.size()));
  writeBytes(texte.data(), texte.size());
}

ipstream::ipstream(std::istream& entree) : Entree(&entree) {
  const auto debut = Entree->tellg();
  Entree->seekg(0, std::ios::end);
  const auto fin = Entree->tellg();
  Entree->seekg(debut);
  if (debut < 0 || fin < 0 || !Entree->good()) {
    Echec = true;
    return;
  }
  RestantOctets = int64_t(fin - debut);
}

bool ipstream::readBytes(void* donnees, size_t taille) {
  if (Echec || int64_t(taille) > RestantOctets) {
    Echec = true;
    std::memset(donnees, 0, taille);
    return false;
  }
  Entree->read(static_cast<char*>(donnees), std::streamsize(taille));
  if (Entree->gcount() != std::streamsize(taille)) {
    Echec = true;
    std::memset(donnees, 0, taille);
    return false;
  }
  RestantOctets -= int64_t(taille);
  return true;
}

int32_t ipstream::readLong() {
  int32_t v = 0;
  readBytes(&v, sizeof v);
  return v;
}

uint8_t ipstream::readByte() {
  uint8_t v = 0;
  readBytes(&v, 1);
  return v;
}

std::string ipstream::readString(size_t tailleMax) {
  const int32_t n = readLong();
  if (Echec || n < 0 || size_t(n) > tailleMax || n > RestantOctets) {
    Echec = true;
    return {};
  }
  std::string s(size_t(n), '\0');
  readBytes(s.data(), s.size());
  return Echec ? std::string() : s;
}

}  // namespace rqbase
