// TConvRtfTxt : le décapage d'un texte RTF, de la fin vers le début.
//
// Les règles (mot de commande, bloc, fin de commande) sont écrites une fois, sur un texte
// abstrait (TSurTexte) : le texte de travail pour les appels publics, et pour le parcours
// de TraitementRtfTxt un tampon à trou dont la partie traitée est rangée à l'envers. Le
// parcours ne touche jamais qu'à la tête de la partie traitée : chaque suppression ou
// insertion y coûte ce qu'elle ôte ou ajoute, et l'accolade qui ferme un bloc se lit sur
// une pile tenue à jour, si bien que le décapage reste linéaire même sur un texte de
// plusieurs mégaoctets aux groupes déséquilibrés.
#include "rqbase/notes/conv_rtf_txt.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace rqbase {

namespace {

const char* const kCommandes[] = {"line",   "pard",   "par",   "page",     "fonttbl",
                                  "colortbl", "info", "title", "header",   "footer",
                                  "pict",   "author", "operator", "stylesheet"};

bool EstFinCmde(char c) { return c == '\\' || c == '{' || c == ' ' || c == '}'; }

// Le texte de travail, positions à partir de 1.
class TTexteSimple {
 public:
  // Les appels qui ne font que lire passent le texte constant : rien n'y est écrit.
  explicit TTexteSimple(const std::string& s) : S(const_cast<std::string&>(s)) {}
  long Longueur() const { return static_cast<long>(S.size()); }
  char Car(long p) const { return S[static_cast<size_t>(p - 1)]; }
  void Supprime(long p, long n) { S.erase(static_cast<size_t>(p - 1), static_cast<size_t>(n)); }
  void Insere(long p, const char* t) { S.insert(static_cast<size_t>(p - 1), t); }
  // La position où la marche depuis `p`, profondeur 1, retombe à 0 ; 0 si elle court au bout.
  long Fermante(long p) const {
    long profondeur = 1;
    for (long q = p; q <= Longueur(); ++q) {
      const char c = Car(q);
      if (c == '}') --profondeur;
      else if (c == '{') ++profondeur;
      if (profondeur == 0) return q;
    }
    return 0;
  }

 private:
  std::string& S;
};

// La partie traitée du texte, de la position Origine à la fin, rangée à l'envers : sa tête
// (la position Origine) est le dernier élément. Les positions avant Origine sont celles du
// texte d'origine, jamais lues par les règles. Fermantes tient, de la tête vers la fin, les
// accolades fermantes qu'aucune ouvrante de la partie traitée n'apparie ; Appariee dit, pour
// chaque ouvrante, quelle fermante elle a ôtée de la pile (-1 : aucune), pour défaire.
class TSuffixe {
 public:
  long Longueur() const { return Origine - 1 + static_cast<long>(Inverse.size()); }
  char Car(long p) const { return Inverse[Indice(p)]; }
  void Supprime(long p, long n) {
    (void)p;  // toujours en tête
    for (long k = 0; k < n && !Inverse.empty(); ++k) Retire();
  }
  void Insere(long p, const char* t) {
    (void)p;
    const std::string s(t);
    for (auto it = s.rbegin(); it != s.rend(); ++it) Pousse(*it);
  }
  long Fermante(long p) const {
    (void)p;
    if (Fermantes.empty()) return 0;
    return Origine + static_cast<long>(Inverse.size()) - 1 - Fermantes.back();
  }

  // La position Origine recule d'un caractère, qui entre en tête.
  void Recule(char c) {
    --Origine;
    Pousse(c);
  }
  void Demarre(long origine) { Origine = origine + 1; }
  std::vector<char>& Caracteres() { return Inverse; }

 private:
  size_t Indice(long p) const { return Inverse.size() - 1 - static_cast<size_t>(p - Origine); }
  void Pousse(char c) {
    const long indice = static_cast<long>(Inverse.size());
    Inverse.push_back(c);
    if (c == '}') {
      Fermantes.push_back(indice);
    } else if (c == '{') {
      long appariee = -1;
      if (!Fermantes.empty()) {
        appariee = Fermantes.back();
        Fermantes.pop_back();
      }
      Appariee.push_back(appariee);
    }
  }
  void Retire() {
    const char c = Inverse.back();
    Inverse.pop_back();
    if (c == '}') {
      Fermantes.pop_back();
    } else if (c == '{') {
      if (Appariee.back() >= 0) Fermantes.push_back(Appariee.back());
      Appariee.pop_back();
    }
  }

  long Origine = 1;
  std::vector<char> Inverse;
  std::vector<long> Fermantes;
  std::vector<long> Appariee;
};

template <class T>
bool FinCmdeSur(const T& t, long p) {
  return p >= 1 && p <= t.Longueur() && EstFinCmde(t.Car(p));
}

template <class T>
int CommandeConnueSur(const T& t, long position) {
  std::string suite;
  for (long p = position + 1; p <= t.Longueur() && p <= position + 10; ++p) suite += t.Car(p);
  for (size_t k = 0; k < std::size(kCommandes); ++k)
    if (suite.compare(0, std::char_traits<char>::length(kCommandes[k]), kCommandes[k]) == 0) return int(k) + 1;
  return -1;
}

template <class T>
void SupprimeCmdeSur(T& t, long position) {
  if (position < 1 || position > t.Longueur()) return;
  long p = position + 1;
  while (p <= t.Longueur() && !FinCmdeSur(t, p)) ++p;
  // Voulu : un point ou une parenthèse qui suivent le mot partent avec lui.
  while (p <= t.Longueur() && (t.Car(p) == '.' || t.Car(p) == '(' || t.Car(p) == ')')) ++p;
  t.Supprime(position, p - position);
}

template <class T>
long SupprimeBlocCmdeSur(T& t, long position) {
  if (position < 1 || position > t.Longueur() || t.Car(position) != '\\') return 0;
  const long fermante = t.Fermante(position);
  if (fermante == 0) {
    // Un bloc qui court jusqu'au bout ne perd que son mot : son contenu reste.
    SupprimeCmdeSur(t, position);
    return 0;
  }
  // L'accolade fermante reste, pour la dernière passe.
  t.Supprime(position, fermante - position);
  return fermante;
}

int ChiffreHexa(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Ôte de `s`, depuis `debut`, chaque morceau qui commence par `motif` jusqu'à la première
// accolade fermante qui le suit (ou jusqu'à la fin du texte s'il n'y en a pas).
void OteMorceaux(std::string& s, const std::string& motif, bool unSeul) {
  size_t depuis = 0;
  for (;;) {
    const size_t p = s.find(motif, depuis);
    if (p == std::string::npos) return;
    const size_t f = s.find('}', p + motif.size());
    s.erase(p, f == std::string::npos ? std::string::npos : f - p + 1);
    if (unSeul) return;
    // La jonction peut former un nouveau motif qui commence juste avant la coupure.
    depuis = p >= motif.size() ? p - motif.size() : 0;
  }
}

}  // namespace

TConvRtfTxt::TConvRtfTxt(const std::string& texte) : Travail(texte) {
  for (const char* c : kCommandes) Connues.Add(c);
}

int TConvRtfTxt::EstCommandeConnue(int position) const {
  return CommandeConnueSur(TTexteSimple(Travail), position);
}

void TConvRtfTxt::SupprimeCmde(int position) {
  TTexteSimple t(Travail);
  SupprimeCmdeSur(t, position);
}

int TConvRtfTxt::SupprimeBlocCmde(int position) {
  TTexteSimple t(Travail);
  return static_cast<int>(SupprimeBlocCmdeSur(t, position));
}

bool TConvRtfTxt::CaracFinCmde(int position) const {
  return FinCmdeSur(TTexteSimple(Travail), position);
}

std::string TConvRtfTxt::ExtraireCommande(int position) const {
  if (position < 1 || position > static_cast<int>(Travail.size())) return "";
  const auto car = [&](int p) { return Travail[static_cast<size_t>(p - 1)]; };
  const bool echappe = position > 1 && car(position - 1) == '\\';
  if ((car(position) == '{' || car(position) == '}') && !echappe) return "{ ou }";
  if (car(position) != '\\') return "";
  int p = position + 1;
  while (p <= static_cast<int>(Travail.size()) && !EstFinCmde(car(p))) ++p;
  return Travail.substr(static_cast<size_t>(position), static_cast<size_t>(p - position - 1));
}

std::string TConvRtfTxt::TraitementRtfTxt(bool sautsDeLigne) {
  std::string& s = Travail;
  // 1. et 2. Le générateur, puis chaque image : l'image ne tient pas d'accolade.
  OteMorceaux(s, "{\\*\\generator", true);
  OteMorceaux(s, "{\\pict", false);
  // 3. Les fins de ligne du fichier RTF ne disent rien ; ôter une paire peut en former une
  // autre, ôtée aussi.
  {
    std::string sans;
    sans.reserve(s.size());
    for (char c : s) {
      if (c == '\n' && !sans.empty() && sans.back() == '\r')
        sans.pop_back();
      else
        sans += c;
    }
    s.swap(sans);
  }

  // 4. De l'avant-dernier caractère jusqu'au deuxième : échappements et commandes.
  const long n = static_cast<long>(s.size());
  TSuffixe t;
  t.Demarre(n);
  if (n >= 1) t.Recule(s[static_cast<size_t>(n - 1)]);
  for (long i = n - 1; i >= 2; --i) {
    t.Recule(s[static_cast<size_t>(i - 1)]);
    if (t.Car(i) != '\\') continue;
    if (i + 1 <= t.Longueur() && t.Car(i + 1) == '\'') {
      const int h = i + 2 <= t.Longueur() ? ChiffreHexa(t.Car(i + 2)) : -1;
      const int l = i + 3 <= t.Longueur() ? ChiffreHexa(t.Car(i + 3)) : -1;
      if (h >= 0 && l >= 0) {
        const int octet = h * 16 + l;
        t.Supprime(i, 4);
        if (octet != 0) t.Insere(i, std::string(1, static_cast<char>(octet)).c_str());
        continue;
      }
      // Un échappement sans ses deux chiffres se lit comme une commande inconnue.
      SupprimeCmdeSur(t, i);
      continue;
    }
    const int k = CommandeConnueSur(t, i);
    if (k == 1 || k == 3 || k == 4) {
      SupprimeCmdeSur(t, i);
      t.Insere(i, sautsDeLigne ? " \n" : " ");
    } else if (k == 2) {
      SupprimeCmdeSur(t, i);
      if (!sautsDeLigne) t.Insere(i, " ");
    } else if (k >= 5) {
      SupprimeBlocCmdeSur(t, i);
    } else {
      SupprimeCmdeSur(t, i);
    }
  }
  if (n >= 2) t.Recule(s[0]);

  // 5. Du dernier caractère au premier : accolades et fins de ligne. La partie traitée est
  // rangée à l'envers, tête en dernier.
  const std::vector<char>& v = t.Caracteres();
  std::vector<char> o;
  o.reserve(v.size());
  for (char c : v) {
    const char d = o.empty() ? 0 : o.back();
    const char e = o.size() < 2 ? 0 : o[o.size() - 2];
    if (c == '{' && d == ' ') {
      o.pop_back();
    } else if (c == ' ' && d == '\r' && e == '\n') {
    } else if (c == '{' || c == '}') {
    } else if (!sautsDeLigne && (c == '\r' || c == '\n')) {
    } else {
      o.push_back(c);
    }
  }
  // 6. Blancs et caractères de contrôle ôtés aux deux bouts.
  const auto garde = [](char c) { return static_cast<unsigned char>(c) > ' '; };
  auto debut = std::find_if(o.rbegin(), o.rend(), garde);
  auto fin = std::find_if(o.begin(), o.end(), garde);
  std::string resultat;
  if (fin != o.end()) resultat.assign(debut, std::make_reverse_iterator(fin));
  Travail = resultat;
  return resultat;
}

TConvRtfTxt& ConvRtfTxt() {
  static TConvRtfTxt instance("");
  return instance;
}

}  // namespace rqbase
