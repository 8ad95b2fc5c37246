// TStringList : une liste de textes avec les comportements de texte délimité
// dont dépendent les fichiers stockés.
//
// DelimitedText / CommaText : à l'écriture, un élément qui contient un blanc
// (octet <= ' ', sauf en délimiteur strict), le guillemet ou le délimiteur est mis
// entre guillemets, les guillemets intérieurs doublés ; une liste d'un seul texte
// vide s'écrit "". À la lecture, hors délimiteur strict, les blancs séparent aussi
// les éléments et sont sautés autour d'eux ; un délimiteur final ajoute un élément vide.
// Text : chaque ligne suivie de "\r\n" ; à la lecture, CR, LF et CR LF finissent une ligne.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace rqbase {

class TStringList {
 public:
  char Delimiter = ',';
  char QuoteChar = '"';
  bool StrictDelimiter = false;
  bool CaseSensitive = false;  // pour IndexOf et IndexOfName

  int Count() const { return int(Chaines.size()); }
  bool Empty() const { return Chaines.empty(); }
  const std::string& operator[](int i) const { return Chaines.at(size_t(i)); }
  std::string& operator[](int i) { return Chaines.at(size_t(i)); }
  intptr_t Objects(int i) const { return Objets.at(size_t(i)); }
  void SetObject(int i, intptr_t objet) { Objets.at(size_t(i)) = objet; }

  int Add(const std::string& s, intptr_t objet = 0);
  void Insert(int i, const std::string& s, intptr_t objet = 0);
  void Delete(int i);
  void Clear();
  int IndexOf(const std::string& s) const;

  // Paires "nom=valeur".
  std::string Name(int i) const;
  std::string ValueFromIndex(int i) const;
  int IndexOfName(const std::string& nom) const;
  std::string Value(const std::string& nom) const;
  void SetValue(const std::string& nom, const std::string& valeur);

  std::string DelimitedText() const;
  void SetDelimitedText(const std::string& texte);
  // Délimiteur ',' et guillemet '"', délimiteur non strict, quels que soient les réglages.
  std::string CommaText() const;
  void SetCommaText(const std::string& texte);
  std::string Text() const;
  void SetText(const std::string& texte);

  const std::vector<std::string>& Lignes() const { return Chaines; }

 private:
  bool Egaux(const std::string& a, const std::string& b) const;
  std::vector<std::string> Chaines;
  std::vector<intptr_t> Objets;
};

}  // namespace rqbase
