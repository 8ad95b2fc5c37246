#include "rqbase/dates/analysedate.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/util/chaines.h"

namespace rqbase {
using namespace dates_interne;

namespace {

bool EstSeparateur(char c) { return c != 0 && std::strchr(" -|_,;.:/*+", c) != nullptr; }

bool QueDesPoints(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c == '.'; });
}

bool QueDesChiffres(std::string_view s) { return !s.empty() && std::all_of(s.begin(), s.end(), IsChiffre); }

bool ChiffresOuPoints(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return IsChiffre(c) || c == '.'; });
}

// Se lit comme une année : seulement des chiffres, des points et des '?'.
bool LitCommeAnnee(std::string_view s) {
  return std::all_of(s.begin(), s.end(), [](char c) { return IsChiffre(c) || c == '.' || c == '?'; });
}

void InconnuEnPoints(std::string& s) { std::replace(s.begin(), s.end(), '?', '.'); }

// Au plus trois parties. Un point n'est un séparateur qu'entre deux caractères qui
// ne sont ni des points ni des séparateurs : "../02/1993" garde ses "..", "1./10" son "1.".
std::vector<std::string> Decoupe(const std::string& texte) {
  std::vector<std::string> parties;
  std::string courante;
  // Deux barres donnent déjà la structure : les points ne sont alors que des chiffres inconnus.
  const bool barres = std::count(texte.begin(), texte.end(), '/') >= 2;
  for (std::size_t i = 0; i < texte.size(); ++i) {
    const char c = texte[i];
    bool separe;
    if (c == '.' && barres) {
      separe = false;
    } else if (c == '.') {
      const char avant = i > 0 ? texte[i - 1] : 0, apres = i + 1 < texte.size() ? texte[i + 1] : 0;
      separe = avant && apres && avant != '.' && apres != '.' && !EstSeparateur(avant) && !EstSeparateur(apres);
    } else {
      separe = EstSeparateur(c);
    }
    if (!separe) {
      courante += c;
    } else if (!courante.empty()) {
      parties.push_back(courante);
      courante.clear();
    }
  }
  if (!courante.empty()) parties.push_back(courante);
  if (parties.size() > 3) parties.resize(3);
  return parties;
}

// Noms de mois repliés (majuscules sans accents) d'un calendrier, rangée par rangée
// dans l'ordre des colonnes : code et nom en républicain, les deux formes courtes
// et les deux noms ailleurs. Les textes numérotés sont fixes : la table se
// construit une fois par calendrier, au premier besoin.
struct TNomsMoisReplies {
  int nombre = 0;
  int colonnes = 0;
  std::string noms[14][4];
};

TNomsMoisReplies ConstruitNomsMois(char calendrier) {
  TNomsMoisReplies t;
  t.nombre = calendrier == 'R' ? 13 : calendrier == 'H' ? 13 : 12;
  t.colonnes = calendrier == 'R' ? 2 : 4;
  for (int m = 1; m <= t.nombre; ++m) {
    if (calendrier == 'R') {
      std::string code, nom;
      int no2;
      RetourneMoisRepublicain2(m, code, nom, no2);
      t.noms[m][0] = Replie(code);
      t.noms[m][1] = Replie(nom);
    } else {
      std::string c1, n1, c2, n2;
      if (calendrier == 'H') {
        RetourneMoisHebraique(m, c1, n1, true);
        RetourneMoisHebraique(m, c2, n2, false);
      } else {
        RetourneMoisGregorien(m, c1, n1, true);
        RetourneMoisGregorien(m, c2, n2, false);
      }
      t.noms[m][0] = Replie(c1);
      t.noms[m][1] = Replie(n1);
      t.noms[m][2] = Replie(c2);
      t.noms[m][3] = Replie(n2);
    }
  }
  return t;
}

// Initialisations statiques locales : sûres entre fils d'exécution.
const TNomsMoisReplies& NomsMois(char calendrier) {
  if (calendrier == 'R') {
    static const TNomsMoisReplies republicain = ConstruitNomsMois('R');
    return republicain;
  }
  if (calendrier == 'H') {
    static const TNomsMoisReplies hebraique = ConstruitNomsMois('H');
    return hebraique;
  }
  static const TNomsMoisReplies gregorien = ConstruitNomsMois('G');
  return gregorien;
}

// Mois en lettres, comparé sans casse ni accents aux deux colonnes de noms et aux
// deux formes courtes : d'abord à l'identique, puis par début.
int ChercheMoisEnLettres(const std::string& tape, char calendrier) {
  std::string_view sansPoints = tape;
  while (!sansPoints.empty() && sansPoints.back() == '.') sansPoints.remove_suffix(1);
  if (sansPoints.empty()) return 0;
  const std::string cherche = Replie(sansPoints);
  const TNomsMoisReplies& t = NomsMois(calendrier);
  for (int m = 1; m <= t.nombre; ++m)
    for (int c = 0; c < t.colonnes; ++c)
      if (t.noms[m][c] == cherche) return m;
  for (int m = 1; m <= t.nombre; ++m)
    for (int c = 0; c < t.colonnes; ++c) {
      const std::string& n = t.noms[m][c];
      if (n.size() > cherche.size() && n.compare(0, cherche.size(), cherche) == 0) return m;
    }
  return 0;
}

// Deux chiffres : le siècle courant, ou le précédent si l'année serait à venir.
int CompleteSiecle(int deuxChiffres) {
  const int courante = GetAnneeCourante();
  int annee = courante / 100 * 100 + deuxChiffres;
  if (annee > courante) annee -= 100;
  return annee;
}

int Analyse(std::string& date, char calendrier, bool souple, bool premiereFois);

// Une forme compacte refusée est recoupée une fois : jour d'un chiffre, mois de
// deux chiffres (sept caractères) ou d'un seul, l'année ensuite.
int Recoupe(std::string& date, const std::string& compacte, char calendrier, bool souple) {
  const std::size_t largeurMois = compacte.size() == 7 ? 2 : 1;
  std::string essai = compacte.substr(0, 1) + "/" + compacte.substr(1, largeurMois) + "/" + compacte.substr(1 + largeurMois);
  if (Analyse(essai, calendrier, souple, false) != -1) return 7;
  date = essai;
  return -1;
}

int Analyse(std::string& date, char calendrier, bool souple, bool premiereFois) {
  const bool republicain = calendrier == 'R';
  const std::string texte = Trim(date);
  if (texte.empty()) {
    date = republicain ? "../..../.." : "../../....";
    return -1;
  }

  // Fourchette d'années de même largeur : gardée telle quelle, chaque côté vérifié.
  if (DateFormatFourchette(texte)) {
    const std::size_t largeur = texte.size() == 9 ? 4 : 2;
    std::string a = texte.substr(0, largeur), b = texte.substr(largeur + 1);
    InconnuEnPoints(a);
    InconnuEnPoints(b);
    if ((largeur == 2) == republicain && ChiffresOuPoints(a) && ChiffresOuPoints(b)) {
      for (const std::string& cote : {a, b}) {
        if (!QueDesChiffres(cote)) continue;
        const int v = ToIntInString(cote);
        const bool ok = republicain ? AnneeRepublicaineOk(v) : calendrier == 'H' ? AnneeHebOk(v) : AnneeOk(v);
        if (!ok) return 7;
      }
      date = a + "/" + b;
      return -1;
    }
  }

  const std::vector<std::string> parties = Decoupe(texte);
  if (parties.empty()) {
    date = republicain ? "../..../.." : "../../....";
    return -1;
  }
  std::string jour, mois, annee;
  bool compacte = false;
  const std::string& premiere = parties[0];
  if (parties.size() == 1 && IsChiffre(premiere[0])) {
    const std::size_t n = premiere.size();
    if (!republicain && n >= 5 && n <= 8) {
      jour = premiere.substr(0, 2);
      mois = premiere.substr(2, 2);
      annee = premiere.substr(4);
      compacte = true;
    } else if (republicain && n == 6) {
      jour = premiere.substr(0, 2);
      mois = premiere.substr(2, 2);
      annee = premiere.substr(4, 2);
      compacte = true;
    }
  }
  if (!compacte) {
    if (parties.size() == 3) {
      jour = parties[0];
      mois = parties[1];
      annee = parties[2];
    } else {
      annee = parties.back();
      if (parties.size() == 2) mois = parties[0];
      if (souple && !LitCommeAnnee(annee)) {
        // "15 oct" : jour et mois, sans année.
        jour = mois;
        mois = annee;
        annee.clear();
        // "1872 fev" : la partie prise pour le jour est une année.
        if (jour.size() >= 3 && QueDesChiffres(jour)) {
          annee = jour;
          jour.clear();
        }
      }
    }
  }

  auto refuse = [&](int code) {
    if (compacte && premiereFois) return Recoupe(date, premiere, calendrier, souple);
    return code;
  };

  // Jour.
  InconnuEnPoints(jour);
  // Un jour de trois caractères ou plus est refusé, points compris ("???" aussi).
  if (jour.empty() || jour == ".") jour = "..";
  if (jour.size() > 2) return refuse(0);
  if (!ChiffresOuPoints(jour)) return refuse(1);
  if (jour.size() == 1) jour = "0" + jour;

  // Mois.
  InconnuEnPoints(mois);
  const std::string moisPoints = republicain ? "...." : "..";
  if (mois.empty() || QueDesPoints(mois)) {
    mois = moisPoints;
  } else if (!ChiffresOuPoints(mois)) {
    const int no = ChercheMoisEnLettres(mois, calendrier);
    if (no == 0) return refuse(2);
    if (republicain) {
      std::string code, nom;
      int no2;
      RetourneMoisRepublicain2(no, code, nom, no2);
      mois = code;
    } else {
      mois = Zeros(no, 2);
    }
  } else if (mois.size() > 2) {
    // Chiffres et points sur plus de deux caractères : aucun mois ne s'écrit ainsi.
    return refuse(republicain ? 2 : 8);
  } else if (republicain) {
    if (!QueDesChiffres(mois)) return refuse(2);
    std::string code, nom;
    int no2;
    if (RetourneMoisRepublicain2(ToIntInString(mois), code, nom, no2) == 0) return refuse(2);
    mois = code;
  } else if (mois.size() == 1) {
    mois = "0" + mois;
  }

  // Année.
  InconnuEnPoints(annee);
  const std::size_t largeurAnnee = republicain ? 2 : 4;
  if (annee.empty()) annee = std::string(largeurAnnee, '.');
  if (!std::all_of(annee.begin(), annee.end(), [](char c) { return IsChiffre(c) || c == '.' || c == '-'; }))
    return refuse(3);
  // Trop long, même tout en points ("?????") : refusé.
  if (annee.size() > largeurAnnee) return refuse(4);
  if (QueDesPoints(annee)) annee = std::string(largeurAnnee, '.');
  if (QueDesChiffres(annee)) {
    const int v = ToIntInString(annee);
    if (republicain)
      annee = Zeros(v, 2);
    else if (annee.size() == 1)
      annee = Zeros(v, 4);
    else if (annee.size() == 2)
      annee = Zeros(CompleteSiecle(v), 4);
    else if (annee.size() == 3)
      annee = "0" + annee;
    const int valeur = ToIntInString(annee);
    const bool ok = republicain ? AnneeRepublicaineOk(valeur) : calendrier == 'H' ? AnneeHebOk(valeur) : AnneeOk(valeur);
    if (!ok) return refuse(7);
  } else if (annee.size() < largeurAnnee) {
    // Année partiellement connue et courte : les chiffres manquants sont en tête, inconnus.
    annee = std::string(largeurAnnee - annee.size(), '.') + annee;
  }

  // Bornes du mois et du jour ; "00" vaut inconnu.
  const int valeurAnnee = ToIntInString(annee);
  const int valeurJour = QueDesChiffres(jour) ? ToIntInString(jour) : 0;
  if (republicain) {
    if (valeurJour != 0 && !JourRepublicainOk(valeurJour, mois, valeurAnnee)) return refuse(9);
  } else {
    const int valeurMois = QueDesChiffres(mois) ? ToIntInString(mois) : 0;
    if (valeurMois != 0 && !(calendrier == 'H' ? MoisHebOk(valeurMois) : MoisOk(valeurMois))) return refuse(8);
    if (valeurJour != 0) {
      const bool ok = calendrier == 'H' ? JourHebOk(valeurJour, valeurMois ? valeurMois : 1)
                                        : JourOk(valeurJour, valeurMois ? valeurMois : 1, valeurAnnee);
      if (!ok) return refuse(9);
    }
  }

  date = jour + "/" + mois + "/" + annee;
  return -1;
}

}  // namespace

bool IsChiffre(char c) { return c >= '0' && c <= '9'; }

int AnalyseDate(std::string& date, char calendrier, bool souple) {
  const char c = static_cast<char>(MajusculeCp1252(static_cast<unsigned char>(calendrier)));
  std::string texte = date;
  const int code = Analyse(texte, c, souple, true);
  date = code == -1 ? texte : Trim(date);
  return code;
}

std::string MessageAnalyseDate(int code) {
  switch (code) {
    case 0: return "Le jour a plus de deux caractères.";
    case 1: return "Le jour ne doit contenir que des chiffres, des points ou des points d'interrogation.";
    case 2: return "Le mois est inconnu.";
    case 3: return "L'année ne doit contenir que des chiffres, des points, des points d'interrogation ou un tiret.";
    case 4: return "L'année a trop de caractères.";
    case 7: return "L'année est hors des limites du calendrier.";
    case 8: return "Le mois est hors des limites du calendrier.";
    case 9: return "Ce jour n'existe pas dans ce mois et cette année.";
    default: return {};
  }
}

}  // namespace rqbase
