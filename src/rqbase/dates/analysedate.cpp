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

constexpr int kAcceptee = -1;

std::string DateInconnue(bool republicain) { return republicain ? "../..../.." : "../../...."; }

// L'année dans les bornes de son calendrier.
bool AnneeDuCalendrierOk(int annee, char calendrier) {
  if (calendrier == 'R') return AnneeRepublicaineOk(annee);
  if (calendrier == 'H') return AnneeHebOk(annee);
  return AnneeOk(annee);
}

// Les parties d'une date tapée, dans l'ordre du texte normalisé.
struct TParties {
  std::string jour, mois, annee;
  bool compacte = false;  // lues d'un seul bloc de chiffres ("27101969")
};

// Fourchette d'années de même largeur (4, ou 2 en républicain) : gardée telle
// quelle, chaque côté connu vérifié comme une année. Faux quand le texte n'en est
// pas une et que l'analyse continue ; sinon `code` dit si elle est acceptée.
bool AnalyseFourchette(const std::string& texte, char calendrier, std::string& date, int& code) {
  if (!DateFormatFourchette(texte)) return false;
  const bool republicain = calendrier == 'R';
  const std::size_t largeur = texte.size() == 9 ? 4 : 2;
  std::string a = texte.substr(0, largeur), b = texte.substr(largeur + 1);
  InconnuEnPoints(a);
  InconnuEnPoints(b);
  if ((largeur == 2) != republicain || !ChiffresOuPoints(a) || !ChiffresOuPoints(b)) return false;
  for (const std::string& cote : {a, b}) {
    if (QueDesChiffres(cote) && !AnneeDuCalendrierOk(ToIntInString(cote), calendrier)) {
      code = 7;
      return true;
    }
  }
  date = a + "/" + b;
  code = kAcceptee;
  return true;
}

// Un seul bloc qui commence par un chiffre, de 5 à 8 caractères (6 en républicain) :
// jour et mois sur deux caractères chacun, l'année ensuite.
bool LitCompacte(const std::string& bloc, bool republicain, TParties& p) {
  const std::size_t n = bloc.size();
  if (!IsChiffre(bloc[0]) || (republicain ? n != 6 : (n < 5 || n > 8))) return false;
  p.jour = bloc.substr(0, 2);
  p.mois = bloc.substr(2, 2);
  p.annee = bloc.substr(4);
  p.compacte = true;
  return true;
}

// Jour, mois et année selon le nombre de parties. Avec moins de trois parties la
// dernière est l'année et celle d'avant le mois ; `souple` déplace les parties
// quand l'année ne se lit pas comme telle.
TParties Repartit(const std::vector<std::string>& parties, bool republicain, bool souple) {
  TParties p;
  if (parties.size() == 1 && LitCompacte(parties[0], republicain, p)) return p;
  if (parties.size() == 3) {
    p.jour = parties[0];
    p.mois = parties[1];
    p.annee = parties[2];
    return p;
  }
  p.annee = parties.back();
  if (parties.size() == 2) p.mois = parties[0];
  if (souple && !LitCommeAnnee(p.annee)) {
    // "15 oct" : jour et mois, sans année.
    p.jour = p.mois;
    p.mois = p.annee;
    p.annee.clear();
    // "1872 fev" : la partie prise pour le jour est une année.
    if (p.jour.size() >= 3 && QueDesChiffres(p.jour)) {
      p.annee = p.jour;
      p.jour.clear();
    }
  }
  return p;
}

// Le jour sur deux caractères, chiffres ou points.
int NormaliseJour(std::string& jour) {
  InconnuEnPoints(jour);
  // Un jour de trois caractères ou plus est refusé, points compris ("???" aussi).
  if (jour.empty() || jour == ".") jour = "..";
  if (jour.size() > 2) return 0;
  if (!ChiffresOuPoints(jour)) return 1;
  if (jour.size() == 1) jour = "0" + jour;
  return kAcceptee;
}

// Le mois en chiffres ("02"), ou son code en républicain ("VENT") ; en lettres, par
// son nom ou un début de nom.
int NormaliseMois(std::string& mois, char calendrier) {
  const bool republicain = calendrier == 'R';
  InconnuEnPoints(mois);
  if (mois.empty() || QueDesPoints(mois)) {
    mois = republicain ? "...." : "..";
    return kAcceptee;
  }
  int numero = 0;
  if (!ChiffresOuPoints(mois)) {
    numero = ChercheMoisEnLettres(mois, calendrier);
    if (numero == 0) return 2;
  } else if (mois.size() > 2) {
    // Chiffres et points sur plus de deux caractères : aucun mois ne s'écrit ainsi.
    return republicain ? 2 : 8;
  } else if (republicain) {
    if (!QueDesChiffres(mois)) return 2;
    numero = ToIntInString(mois);
  } else {
    if (mois.size() == 1) mois = "0" + mois;
    return kAcceptee;
  }
  if (!republicain) {
    mois = Zeros(numero, 2);
    return kAcceptee;
  }
  std::string code, nom;
  int no2;
  if (RetourneMoisRepublicain2(numero, code, nom, no2) == 0) return 2;
  mois = code;
  return kAcceptee;
}

// L'année sur 4 caractères (2 en républicain), complétée selon sa longueur :
// 1 chiffre pour sa valeur, 2 chiffres par le siècle, 3 chiffres d'un zéro ; une
// année en partie connue est complétée de points en tête.
int NormaliseAnnee(std::string& annee, char calendrier) {
  const bool republicain = calendrier == 'R';
  InconnuEnPoints(annee);
  const std::size_t largeur = republicain ? 2 : 4;
  if (annee.empty()) annee = std::string(largeur, '.');
  if (!std::all_of(annee.begin(), annee.end(), [](char c) { return IsChiffre(c) || c == '.' || c == '-'; }))
    return 3;
  // Trop long, même tout en points ("?????") : refusé.
  if (annee.size() > largeur) return 4;
  if (QueDesPoints(annee)) annee = std::string(largeur, '.');
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
    if (!AnneeDuCalendrierOk(ToIntInString(annee), calendrier)) return 7;
  } else if (annee.size() < largeur) {
    // Année partiellement connue et courte : les chiffres manquants sont en tête, inconnus.
    annee = std::string(largeur - annee.size(), '.') + annee;
  }
  return kAcceptee;
}

// Bornes du mois et du jour, selon le calendrier ; "00" vaut inconnu.
int VerifieBornes(const TParties& p, char calendrier) {
  const int annee = ToIntInString(p.annee);
  const int jour = QueDesChiffres(p.jour) ? ToIntInString(p.jour) : 0;
  if (calendrier == 'R') return (jour != 0 && !JourRepublicainOk(jour, p.mois, annee)) ? 9 : kAcceptee;
  const bool hebreu = calendrier == 'H';
  const int mois = QueDesChiffres(p.mois) ? ToIntInString(p.mois) : 0;
  if (mois != 0 && !(hebreu ? MoisHebOk(mois) : MoisOk(mois))) return 8;
  if (jour != 0 && !(hebreu ? JourHebOk(jour, mois ? mois : 1) : JourOk(jour, mois ? mois : 1, annee))) return 9;
  return kAcceptee;
}

// Les parties normalisées et vérifiées dans l'ordre jour, mois, année, bornes :
// le premier refus donne son code.
int NormaliseParties(TParties& p, char calendrier) {
  if (const int code = NormaliseJour(p.jour); code != kAcceptee) return code;
  if (const int code = NormaliseMois(p.mois, calendrier); code != kAcceptee) return code;
  if (const int code = NormaliseAnnee(p.annee, calendrier); code != kAcceptee) return code;
  return VerifieBornes(p, calendrier);
}

int Analyse(std::string& date, char calendrier, bool souple, bool premiereFois);

// Un bloc de cinq caractères dont les quatre premiers sont une année ("18505",
// "1850?") est une année suivie d'autre chose : le recouper en jour et mois
// inventerait une date (01/08/0505).
bool SeRecoupe(const std::string& compacte, char calendrier) {
  if (compacte.size() != 5) return true;
  const std::string tete = compacte.substr(0, 4);
  return !(QueDesChiffres(tete) && AnneeDuCalendrierOk(ToIntInString(tete), calendrier));
}

// Une forme compacte refusée est recoupée une fois : jour d'un chiffre, mois de
// deux chiffres (sept caractères) ou d'un seul, l'année ensuite. L'année recoupée
// doit être toute connue ou toute inconnue ("50?" n'en est pas une) ; tout échec
// du recoupage donne le code 7.
int Recoupe(std::string& date, const std::string& compacte, char calendrier, bool souple) {
  const std::size_t largeurMois = compacte.size() == 7 ? 2 : 1;
  std::string annee = compacte.substr(1 + largeurMois);
  InconnuEnPoints(annee);
  if (!QueDesChiffres(annee) && !QueDesPoints(annee)) return 7;
  std::string essai = compacte.substr(0, 1) + "/" + compacte.substr(1, largeurMois) + "/" + compacte.substr(1 + largeurMois);
  if (Analyse(essai, calendrier, souple, false) != kAcceptee) return 7;
  date = essai;
  return kAcceptee;
}

int Analyse(std::string& date, char calendrier, bool souple, bool premiereFois) {
  const std::string texte = Trim(date);
  if (int code; AnalyseFourchette(texte, calendrier, date, code)) return code;
  const std::vector<std::string> decoupe = Decoupe(texte);
  if (decoupe.empty()) {
    date = DateInconnue(calendrier == 'R');
    return kAcceptee;
  }
  TParties p = Repartit(decoupe, calendrier == 'R', souple);
  if (const int code = NormaliseParties(p, calendrier); code != kAcceptee) {
    if (p.compacte && premiereFois && SeRecoupe(decoupe[0], calendrier))
      return Recoupe(date, decoupe[0], calendrier, souple);
    return code;
  }
  date = p.jour + "/" + p.mois + "/" + p.annee;
  return kAcceptee;
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
