#include "rqbase/gedcom/rapport.h"

namespace rqbase {

void TRapportImport::Avertit(long ligne, std::string_view texte, std::string raison) {
  // Une ligne d'un mégaoctet ne se recopie pas entière dans le rapport.
  constexpr size_t kLgMax = 120;
  TAvertissement a;
  a.Ligne = ligne;
  a.Texte = texte.size() > kLgMax ? std::string(texte.substr(0, kLgMax)) + "..." : std::string(texte);
  // Une valeur de plusieurs lignes (CONT) tient sur une ligne du rapport.
  for (size_t p = a.Texte.find_first_of("\r\n"); p != std::string::npos; p = a.Texte.find_first_of("\r\n", p)) {
    const size_t n = (a.Texte[p] == '\r' && p + 1 < a.Texte.size() && a.Texte[p + 1] == '\n') ? 2 : 1;
    a.Texte.replace(p, n, " / ");
    p += 3;
  }
  a.Raison = std::move(raison);
  Avertissements.push_back(std::move(a));
}

std::vector<std::string> TexteRapport(const TRapportImport& r) {
  std::vector<std::string> l;
  auto compte = [&](const char* quoi, long n) { l.push_back(std::string(quoi) + " : " + std::to_string(n)); };
  compte("Personnes", r.Personnes);
  compte("Familles", r.Familles);
  compte("Événements", r.Evenements);
  compte("Lieux", r.Lieux);
  compte("Sources", r.Sources);
  compte("Médias", r.Medias);
  compte("Notes", r.Notes);
  l.push_back("Avertissements : " + std::to_string(r.Avertissements.size()));
  for (const TAvertissement& a : r.Avertissements)
    l.push_back((a.Ligne > 0 ? "ligne " + std::to_string(a.Ligne) : std::string("fichier")) + " : " + a.Raison +
                (a.Texte.empty() ? std::string() : " : " + a.Texte));
  return l;
}

}  // namespace rqbase
