// Clés des noms sur des octets quelconques : jamais de plantage, de boucle ni d'écriture hors
// des tampons fixes (chacun est alloué à sa taille maximale exacte, AddressSanitizer en garde
// le bord), et les propriétés que l'index tient pour acquises.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/index/bo_chn.h"
#include "rqbase/index/cle_compressee.h"
#include "rqbase/index/particules.h"
#include "rqbase/index/prenom_usuel.h"
#include "rqbase/index/soundex.h"
#include "rqbase/util/majuscules.h"

namespace {

void Exige(bool condition) {
  if (!condition) __builtin_trap();
}

// Les trois passes de la forme d'index faites l'une après l'autre, comme elles se lisent :
// la passe unique de la bibliothèque doit donner la même chose.
std::string TroisPasses(const std::string& texte) {
  std::string s1, s2, s3;
  for (char c : texte)
    if (c == '\0' || std::strchr("*?,(){}[]&\"/=", c) == nullptr) s1 += c;
  for (char c : s1)
    if (c != ';' || s2.empty() || s2.back() != ';') s2 += c;
  for (char c : s2)
    if (c != ' ' || s3.empty() || s3.back() != ' ') s3 += c;
  return s3;
}

bool DansLAlphabet(char c) { return (c >= 'A' && c <= 'Z') || c == ' ' || c == '-'; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  using namespace rqbase;
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  const std::string cTexte = texte.c_str();  // jusqu'au premier octet nul

  // Capitales : même longueur, mode 2 sans minuscule accentuée.
  const std::string nues = UpperANSIChaineAS(cTexte, 2);
  Exige(nues.size() == cTexte.size());
  for (char c : nues) Exige(!(c >= 'a' && c <= 'z') && !(static_cast<unsigned char>(c) >= 0xE0 && c != '\xF7' && c != '\xDF'));
  UpperANSIChaineAS(texte, 1);

  // Clé : seulement l'alphabet de Compress, jamais plus longue que le texte, stable.
  std::string cle = texte;
  NormaliseCle(cle);
  Exige(cle.size() <= cTexte.size());
  for (char c : cle) Exige(DansLAlphabet(c));
  std::string encore = cle;
  Exige(NormaliseCle(encore) == cle);

  // Forme serrée : aller-retour exact jusqu'à 254 caractères.
  const std::string morceau = cle.substr(0, 254);
  std::string avecLongueur = std::string(1, static_cast<char>(morceau.size())) + morceau;
  auto serre = std::make_unique<char[]>(kTailleCleCompresseeMax);
  Compress(avecLongueur.c_str(), serre.get());
  Exige(static_cast<unsigned char>(serre[0]) == (morceau.size() * 5 + 7) / 8 + 1);
  auto desserre = std::make_unique<char[]>(kTailleCleDecompresseeMax);
  DeCompress(serre.get(), desserre.get());
  Exige(static_cast<unsigned char>(desserre[0]) == morceau.size() + 1);
  Exige(desserre.get() + 1 == morceau);

  // Forme serrée quelconque : src[0] octets lisibles, pas un de plus.
  if (taille > 0) {
    const size_t lisibles = donnees[0] == 0 ? 1 : donnees[0];
    std::vector<char> src(lisibles, 0);
    std::memcpy(src.data(), donnees, std::min(lisibles, taille));
    src[0] = static_cast<char>(donnees[0]);
    DeCompress(src.data(), desserre.get());
    // Et Compress d'un texte quelconque, octets nuls et hors de l'alphabet compris.
    std::string brut = std::string(1, static_cast<char>(std::min<size_t>(taille - 1, 255))) + texte.substr(1, 255);
    Compress(brut.data(), serre.get());
  }

  // Soundex : au plus 4 caractères ; une comparaison d'un texte à lui-même est une égalité.
  auto code = std::make_unique<char[]>(kTailleSoundex);
  const char* r = strSoundex(cTexte.c_str(), code.get());
  Exige(std::strlen(code.get()) <= 4);
  Exige((r == nullptr) == (code[0] == '\0'));
  const std::string moitie = cTexte.substr(0, cTexte.size() / 2);
  Exige(strcmpSoundexPartiel(cTexte.c_str(), cTexte.c_str()) == 0);
  Exige((strcmpSoundexPartiel(moitie.c_str(), cTexte.c_str()) == 0) ==
        (strcmpSoundexPartiel(cTexte.c_str(), moitie.c_str()) == 0));
  strEgaleSoundexPartielChqElt(moitie.c_str(), cTexte.c_str());
  Exige(strcmpIgnDiac(cTexte.c_str(), cTexte.c_str()) == 0);
  const int ab = strcmpIgnDiac(moitie.c_str(), cTexte.c_str());
  const int ba = strcmpIgnDiac(cTexte.c_str(), moitie.c_str());
  Exige((ab < 0) == (ba > 0) && (ab == 0) == (ba == 0));

  // Particules et forme d'index : jamais plus longues, sans caractère interdit ni doublon.
  EstCeUneParticule(texte);
  Exige(PasseParticule(texte).size() <= texte.size());
  const std::string index = FormatIndex(texte);
  Exige(index.size() <= texte.size());
  for (char c : index) Exige(c == '\0' || std::strchr("*?,(){}[]&\"/=", c) == nullptr);
  Exige(index.find(";;") == std::string::npos && index.find("  ") == std::string::npos);
  Exige(TransformeEnCaractereIndex(index) == index);
  Exige(TransformeEnCaractereIndex(texte) == TroisPasses(texte));

  // Prénom usuel : le texte ne fait que raccourcir ; marqué puis relu, le rang revient.
  std::vector<char> prenoms(cTexte.begin(), cTexte.end());
  prenoms.push_back('\0');
  const short rang = CoteNoPrenomUsuel(prenoms.data());
  Exige(std::strlen(prenoms.data()) <= cTexte.size());
  Exige(std::strchr(prenoms.data(), '"') == nullptr);
  Exige(rang >= 0);
  std::string mots;  // des mots non vides séparés d'un seul blanc, sans guillemet
  for (char c : cle) {
    if (c == ' ' && (mots.empty() || mots.back() == ' ')) continue;
    mots += c;
  }
  while (!mots.empty() && mots.back() == ' ') mots.pop_back();
  const short no = taille > 0 ? static_cast<short>(donnees[taille - 1] % 8) : 0;
  const std::string marque = NoCotePrenomUsuel(mots, no);
  std::vector<char> relu(marque.begin(), marque.end());
  relu.push_back('\0');
  const short rangRelu = CoteNoPrenomUsuel(relu.data());
  Exige(std::string(relu.data()) == mots);
  Exige(rangRelu == (marque == mots ? 0 : no));
  return 0;
}
