#include "rqbase/fields/fichier_dch.h"

#include <charconv>
#include <filesystem>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/liste_chaines.h"

namespace rqbase {

TContenuDch DecodeDch(const std::string& texte) {
  TContenuDch c;
  TStringList liste;
  liste.SetText(texte);
  const auto& lignes = liste.Lignes();
  if (lignes.empty()) return c;

  const std::string compte = Trim(lignes[0]);
  long nb = -1;
  const auto [fin, ec] = std::from_chars(compte.data(), compte.data() + compte.size(), nb);
  // Un compte illisible arrête la lecture à zéro champ : le reste n'est pas lu non plus.
  if (compte.empty() || ec != std::errc() || fin != compte.data() + compte.size() || nb < 0) return c;

  size_t pos = 1;
  while (nb > 0 && pos < lignes.size()) {
    c.Champs.push_back(lignes[pos++]);
    --nb;
  }
  c.EquivProfession.Rest(lignes, pos);
  c.EquivNaissance.Rest(lignes, pos);
  c.EquivDeces.Rest(lignes, pos);
  c.EquivUnion.Rest(lignes, pos);
  if (pos < lignes.size()) c.TypesSource = lignes[pos++];
  if (pos < lignes.size()) c.TypesNote = lignes[pos++];
  c.EquivResidence.Rest(lignes, pos);
  if (pos >= lignes.size() || lignes[pos] != kMarqueDch2020) {
    c.Ancien = true;
    return c;
  }
  ++pos;
  if (pos < lignes.size()) c.VersionChaine = lignes[pos++];
  if (pos < lignes.size()) c.TypesIllustration = lignes[pos++];
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
  // Écrit à côté puis renomme : un arrêt en cours d'écriture laisse l'ancien fichier entier.
  const std::string provisoire = chemin + ".tmp";
  {
    auto f = TFichierBrut::Ouvre(provisoire, TFichierBrut::TAcces::LectureEcriture,
                                 TFichierBrut::TDisposition::CreeOuRemplace, false);
    if (!f) return false;
    int64_t ecrits = 0;
    const int64_t total = int64_t(texte.size());
    while (ecrits < total) {
      const int64_t n = f->EcritA(ecrits, texte.data() + ecrits, size_t(total - ecrits));
      if (n <= 0) {
        f.reset();
        std::error_code ec;
        std::filesystem::remove(CheminOs(provisoire), ec);
        return false;
      }
      ecrits += n;
    }
    if (!f->Flush()) return false;
  }
  std::error_code ec;
  std::filesystem::rename(CheminOs(provisoire), CheminOs(chemin), ec);
  if (ec) {
    std::filesystem::remove(CheminOs(provisoire), ec);
    return false;
  }
  return true;
}

bool LitFichierDch(const std::string& chemin, TContenuDch& contenu) {
  std::string texte;
  if (!LitFichierTexte(chemin, texte)) return false;
  contenu = DecodeDch(texte);
  return true;
}

bool EcritFichierDch(const std::string& chemin, const TContenuDch& contenu) {
  return EcritFichierTexte(chemin, CodeDch(contenu));
}

}  // namespace rqbase
