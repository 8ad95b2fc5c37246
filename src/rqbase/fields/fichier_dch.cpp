#include "rqbase/fields/fichier_dch.h"

#include <charconv>
#include <string_view>

#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/liste_chaines.h"

namespace rqbase {

namespace {

constexpr std::string_view kMarqueUtf8 = "\xEF\xBB\xBF";

void Signale(TContenuDch& c, const std::string& raison) {
  if (c.Dommage.empty()) c.Dommage = raison;
}

// Ôte les octets de contrôle (hors TAB, CR, LF) : un catalogue n'en porte jamais, et le
// catalogue réécrit ne doit pas les garder (il serait de nouveau tenu pour abîmé).
// Rend le numéro de la ligne du premier, 0 s'il n'y en a pas.
size_t OteOctetsControle(std::string& texte) {
  size_t ligne = 1, premier = 0, j = 0;
  for (const char ch : texte) {
    const auto o = static_cast<unsigned char>(ch);
    if (o == '\n') ++ligne;
    if (o < 0x20 && o != '\t' && o != '\r' && o != '\n') {
      if (premier == 0) premier = ligne;
      continue;
    }
    texte[j++] = ch;
  }
  texte.resize(j);
  return premier;
}

// Les lignes non blanches que la lecture laisse à partir de `pos`.
size_t LignesNonLues(const std::vector<std::string>& lignes, size_t pos) {
  size_t n = 0;
  for (size_t i = pos; i < lignes.size(); ++i)
    if (!Trim(lignes[i]).empty()) ++n;
  return n;
}

void SignaleNonLues(TContenuDch& c, const std::vector<std::string>& lignes, size_t pos) {
  if (const size_t n = LignesNonLues(lignes, pos))
    Signale(c, std::to_string(n) + (n == 1 ? " ligne non lue" : " lignes non lues") + " en fin de fichier");
}

}  // namespace

TContenuDch DecodeDch(const std::string& brut) {
  TContenuDch c;
  std::string texte;
  if (std::string_view(brut).substr(0, kMarqueUtf8.size()) == kMarqueUtf8) {
    c.Utf8 = true;
    const std::string_view suite = std::string_view(brut).substr(kMarqueUtf8.size());
    if (!EstUtf8Valide(suite))
      Signale(c, "texte UTF-8 mal formé");
    else if (PremierCaractereSansEquivalent(suite) != 0)
      Signale(c, "caractères sans équivalent en Windows-1252");
    texte = DepuisUtf8(suite);
  } else {
    texte = brut;
  }
  if (const size_t ligne = OteOctetsControle(texte))
    Signale(c, "octet de contrôle à la ligne " + std::to_string(ligne));

  TStringList liste;
  liste.SetText(texte);
  const auto& lignes = liste.Lignes();
  if (lignes.empty()) {
    Signale(c, "fichier vide");
    return c;
  }

  const std::string compte = Trim(lignes[0]);
  long nb = -1;
  const auto [fin, ec] = std::from_chars(compte.data(), compte.data() + compte.size(), nb);
  // Un compte illisible arrête la lecture à zéro champ : le reste n'est pas lu non plus.
  if (compte.empty() || ec != std::errc() || fin != compte.data() + compte.size() || nb < 0) {
    Signale(c, "nombre de champs illisible");
    return c;
  }

  size_t pos = 1;
  while (nb > 0 && pos < lignes.size()) {
    c.Champs.push_back(lignes[pos++]);
    --nb;
  }
  if (nb > 0)
    Signale(c, std::to_string(c.Champs.size() + size_t(nb)) + " champs annoncés, " +
                   std::to_string(c.Champs.size()) + " présents");
  c.EquivProfession.Rest(lignes, pos);
  c.EquivNaissance.Rest(lignes, pos);
  c.EquivDeces.Rest(lignes, pos);
  c.EquivUnion.Rest(lignes, pos);
  if (pos < lignes.size()) c.TypesSource = lignes[pos++];
  if (pos < lignes.size()) c.TypesNote = lignes[pos++];
  c.EquivResidence.Rest(lignes, pos);
  if (pos >= lignes.size() || lignes[pos] != kMarqueDch2020) {
    c.Ancien = true;
    SignaleNonLues(c, lignes, pos);
    return c;
  }
  ++pos;
  if (pos < lignes.size()) c.VersionChaine = lignes[pos++];
  if (pos < lignes.size()) c.TypesIllustration = lignes[pos++];
  SignaleNonLues(c, lignes, pos);
  return c;
}

std::string CodeDch(const TContenuDch& c) {
  std::vector<std::string> lignes;
  lignes.reserve(c.Champs.size() + 24);
  lignes.push_back(std::to_string(c.Champs.size()));
  for (const auto& l : c.Champs) lignes.push_back(l);
  c.EquivProfession.Sauv(lignes);
  c.EquivNaissance.Sauv(lignes);
  c.EquivDeces.Sauv(lignes);
  c.EquivUnion.Sauv(lignes);
  lignes.push_back(c.TypesSource.value_or(""));
  lignes.push_back(c.TypesNote.value_or(""));
  c.EquivResidence.Sauv(lignes);
  lignes.push_back(kMarqueDch2020);
  lignes.push_back(c.VersionChaine.value_or(""));
  lignes.push_back(c.TypesIllustration.value_or(""));
  std::string r;
  for (const auto& l : lignes) {
    r += l;
    r += "\r\n";
  }
  return r;
}

bool LitFichierTexte(const std::string& chemin, std::string& texte) {
  auto f = TFichierBrut::Ouvre(chemin, TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre, false);
  if (!f) return false;
  const int64_t taille = f->Taille();
  if (taille < 0) return false;
  std::string t(size_t(taille), '\0');
  int64_t lus = 0;
  while (lus < taille) {
    const int64_t n = f->LitA(lus, t.data() + lus, size_t(taille - lus));
    if (n < 0) return false;
    if (n == 0) break;
    lus += n;
  }
  t.resize(size_t(lus));
  texte = std::move(t);
  return true;
}

bool EcritFichierTexte(const std::string& chemin, const std::string& texte) {
  // Remplacé d'un bloc : un arrêt en cours d'écriture laisse l'ancien fichier entier.
  return RemplaceFichier(chemin, texte);
}

bool LitFichierDch(const std::string& chemin, TContenuDch& contenu) {
  std::string texte;
  if (!LitFichierTexte(chemin, texte)) return false;
  contenu = DecodeDch(texte);
  return true;
}

bool EcritFichierDch(const std::string& chemin, const TContenuDch& contenu) {
  return RemplaceFichier(chemin, CodeDch(contenu));
}

std::string NomMiseDeCoteDch(const std::string& chemin) {
  const size_t barre = chemin.find_last_of('/');
  const size_t point = chemin.find_last_of('.');
  const bool avecExtension = point != std::string::npos && (barre == std::string::npos || point > barre);
  const std::string base = avecExtension ? chemin.substr(0, point) : chemin;
  const std::string extension = avecExtension ? chemin.substr(point) : std::string();
  return NomLibre(base + " (endommagé)" + extension);
}

std::string MetDeCoteDch(const std::string& chemin) {
  const std::string cible = NomMiseDeCoteDch(chemin);
  if (!RenommeSansEcraser(chemin, cible)) return {};
  const size_t barre = cible.find_last_of('/');
  SynchroniseDossier(barre == std::string::npos ? std::string(".") : cible.substr(0, barre));
  return cible;
}

}  // namespace rqbase
