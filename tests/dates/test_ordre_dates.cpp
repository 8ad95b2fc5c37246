// L'ordre des dates (CompareDate) et les clés de texte "aaaammjj".
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "rqbase/dates/conversions.h"
#include "rqbase/dates/ordre_dates.h"

namespace rqbase {
namespace {

struct TDateTapee {
  const char* acte;
  char calendrier;
  const char* date;

  TDateRQ Date() const {
    TDateRQ d(calendrier, date);
    d.SetActe(acte);
    return d;
  }
};

struct TLigneOrdre {
  TDateTapee a, b;
  int defaut, attendu;
};

// Chaque règle de l'ordre, et chaque forme qu'une date peut prendre dans un
// enregistrement : actes cadrés de blancs, calendriers inattendus, textes courts,
// blancs et tabulations de fin, dates républicaines et hébraïques entières ou non.
const TLigneOrdre kLignes[] = {
    // Deux dates ordinaires : clés "aaaammjj" comparées comme des chaînes.
    {{"", 'G', "15/06/1850"}, {"", 'G', "16/06/1850"}, 0, -1},
    {{"", 'G', "15/06/1850"}, {"", 'G', "15/06/1850"}, 0, 0},
    {{"", 'G', "../06/1850"}, {"", 'G', "15/06/1850"}, 0, -1},  // '.' avant '0'
    {{"", 'G', "00/06/1850"}, {"", 'G', "../06/1850"}, 0, 1},
    {{"", 'G', "../../1855"}, {"", 'G', "12/05/1855"}, 0, -1},
    {{"", 'G', "../../...."}, {"", 'G', "01/01/0001"}, 0, -1},  // sans année : avant tout
    {{"", 'G', "../../...."}, {"", 'G', "12/05/1855"}, 0, -1},
    {{"", 'G', ""}, {"", 'G', "../../...."}, 0, 0},
    {{"", 'G', "15/06/1850 "}, {"", 'G', "15/06/1850"}, 0, 0},
    {{"", 'G', "1850"}, {"", 'G', "01/01/1850"}, 0, -1},        // l'année se lit en 7-10
    {{"", 'G', "15/06/185."}, {"", 'G', "15/06/1850"}, 0, -1},  // année 185, clé "185.0615"
    {{"", 'G', "15/06/185\t"}, {"", 'G', "15/06/1850"}, 0, 1},  // clé "1850615", plus courte
    // Un acte de précision fait de la date la fourchette de son année.
    {{"ca", 'G', "../../1850"}, {"", 'G', "01/01/1850"}, 0, 0},
    {{"Ca", 'G', "15/06/1850"}, {"", 'G', "01/01/1850"}, 0, 0},
    {{"~ ", 'G', "15/06/1850"}, {"", 'G', "31/12/1850"}, 0, 0},
    {{"<", 'G', "15/06/1850"}, {"", 'G', "01/01/1851"}, 0, -1},
    {{" <", 'G', "15/06/1850"}, {"", 'G', "01/01/1851"}, 0, -1},
    {{">", 'G', "15/06/1850"}, {"", 'G', "01/01/1849"}, 0, 1},
    {{"<", 'G', "15/06/1850"}, {"", 'G', "1850/1860"}, 0, -1},
    {{"?", 'G', "15/06/1850"}, {"", 'G', "01/01/1850"}, 0, 1},  // '?' et 'p' : dates ordinaires
    {{"p", 'G', "15/06/1850"}, {"", 'G', "01/01/1850"}, 0, 1},
    // Deux fourchettes.
    {{"", 'G', "1850/1860"}, {"", 'G', "1855/1870"}, 0, 0},
    {{"", 'G', "1850/1860"}, {"", 'G', "1860/1870"}, 0, -1},
    // Voulu : des bornes qui se touchent ne donnent "avant" que dans un sens.
    {{"", 'G', "1860/1870"}, {"", 'G', "1850/1860"}, 0, 0},
    {{"", 'G', "1861/1870"}, {"", 'G', "1850/1860"}, 0, 1},
    {{"", 'G', "1850/1860 "}, {"", 'G', "1861/1870"}, 0, -1},
    // Une fourchette et une date, dans les deux sens ; bornes ouvertes à cent ans.
    {{"", 'G', "1850/1860"}, {"", 'G', "12/05/1855"}, 0, 0},
    {{"", 'G', "12/05/1855"}, {"", 'G', "1860/1870"}, 0, -1},
    {{"", 'G', "12/05/1875"}, {"", 'G', "1860/1870"}, 0, 1},
    {{"", 'G', "01/01/1875"}, {"", 'G', "1850/1860"}, 0, 1},
    {{"", 'G', "1850/...."}, {"", 'G', "01/01/1990"}, 0, -1},
    {{"", 'G', "..../1860"}, {"", 'G', "01/01/1700"}, 0, 1},
    {{"", 'G', "..../...."}, {"", 'G', "12/05/1855"}, 7, 7},
    {{"", 'G', "12/05/1855"}, {"", 'G', "..../...."}, 7, 7},  // défaut non inversé par l'échange
    {{"", 'G', "../../...."}, {"", 'G', "1850/1860"}, 5, 5},
    // Républicain : entier, en minuscules, en partie inconnu, fourchettes, hors de l'ère.
    {{"", 'R', "10/VENT/05"}, {"", 'G', "28/02/1797"}, 0, 0},
    {{"", 'R', "10/vent/05"}, {"", 'G', "28/02/1797"}, 0, 0},
    {{"", 'R', "../VENT/05"}, {"", 'G', "01/03/1797"}, 0, -1},  // jour inconnu : "../03/1797"
    {{"", 'R', "05/07"}, {"", 'G', "01/01/1798"}, 0, 0},         // 1797/1799
    {{"", 'R', "05/.."}, {"", 'G', "01/01/1898"}, 0, -1},        // 1797/1897 estimée
    {{"ca", 'R', "10/VENT/05"}, {"", 'G', "01/01/1797"}, 0, 0},
    {{"", 'R', "10/VENT/25"}, {"", 'G', "01/01/0001"}, 0, 1},
    // Hébreu : entier, invalide, en partie inconnu, fourchette.
    {{"", 'H', "01/01/5784"}, {"", 'G', "16/09/2023"}, 0, 0},
    {{"", 'H', "01/01/5784"}, {"", 'G', "17/09/2023"}, 0, -1},
    {{"", 'H', "../01/5784"}, {"", 'G', "01/09/2023"}, 0, -1},  // "../09/2023"
    {{"", 'H', "30/07/5784"}, {"", 'G', "01/01/0001"}, 0, -1},  // Adar II de 29 jours : sans date
    {{"", 'H', "5780/5790"}, {"", 'G', "01/01/2025"}, 0, 0},
    // Avant Jésus-Christ : ordre inverse entre elles, avant toute autre date.
    {{"", 'A', "01/01/0050"}, {"", 'A', "01/01/0010"}, 0, -1},
    {{"", 'A', "01/01/0050"}, {"", 'A', "01/01/0050"}, 0, 0},
    {{"", 'A', "01/01/0010"}, {"", 'G', "01/01/0001"}, 0, -1},
    {{"", 'G', "01/01/0001"}, {"", 'A', "01/01/0010"}, 0, 1},
    {{"", 'A', "0050/0040"}, {"", 'A', "01/01/0045"}, 0, -1},
    // Calendriers lus comme grégoriens.
    {{"", '?', "15/06/1850"}, {"", 'G', "15/06/1850"}, 0, 0},
    {{"", 'F', "15/06/1850"}, {"", ' ', "16/06/1850"}, 0, -1},
    {{"", 'x', "15/06/1850"}, {"", '\0', "14/06/1850"}, 0, 1},
};

TEST(OrdreDesDates, ReglesEtFormes) {
  for (const auto& l : kLignes) {
    const TDateRQ a = l.a.Date(), b = l.b.Date();
    // L'affectation garde les 15 octets (la copie, elle, normalise calendrier et blancs).
    TDateRQ copieA, copieB;
    copieA = a;
    copieB = b;
    SCOPED_TRACE(a.ExportInString() + " " + b.ExportInString());
    EXPECT_EQ(TDateRQ::CompareDate(a, b, l.defaut), l.attendu);
    // Les dates comparées ne changent pas.
    EXPECT_TRUE(a.MemesOctets(copieA) && b.MemesOctets(copieB));
  }
  EXPECT_TRUE(TDateRQ('G', "01/01/1850") < TDateRQ('G', "02/01/1850"));
  EXPECT_FALSE(TDateRQ('G', "1850/1860") < TDateRQ('G', "12/05/1855"));
}

TEST(OrdreDesDates, OctetsDUnEnregistrement) {
  // Un zéro au milieu du texte l'arrête : "15/06" a la forme d'une fourchette à deux
  // chiffres (15 à 6), qui passe après l'an 1.
  const TDateRQ coupee(std::string_view("# <G15/06\0001850#", 15));
  ASSERT_EQ(coupee.GetDate(), "15/06");
  EXPECT_EQ(TDateRQ::CompareDate(coupee, TDateRQ('G', "01/01/0001"), 0), 1);
  EXPECT_EQ(TDateRQ::CompareDate(TDateRQ('G', "01/01/0001"), coupee, 0), -1);
}

TEST(OrdreDesDates, ClesDeTexte) {
  EXPECT_EQ(TransformeDateNormale("27/10/1969"), "19691027");
  EXPECT_EQ(TransformeDateNormale("10/1969"), "196910");
  EXPECT_EQ(TransformeDateNormale("1969"), "1969");
  EXPECT_EQ(TransformeDateNormale(""), "");
  EXPECT_EQ(TransformeDateNormale("27/10/1969/x"), "");
  EXPECT_EQ(TransformeDateAMJ("19691027"), "27/10/1969");
  EXPECT_EQ(TransformeDateAMJ("196910"), "10/1969");
  EXPECT_EQ(TransformeDateAMJ("1969"), "1969");
  EXPECT_EQ(strcmpDATE("27/10/1969", "01/01/1970"), -1);
  EXPECT_EQ(strcmpDATE("01/01/1970", "27/10/1969"), 1);
  EXPECT_EQ(strcmpDATE("10/1969", "10/1969"), 0);
  EXPECT_EQ(strcmpDATE(nullptr, ""), 0);
}

// Les années gardées (1er Tichri, conversions d'années) se remplissent au premier
// besoin : des fils qui les remplissent ensemble trouvent tous la même chose, et ce
// qu'attendent les lignes de l'ordre.
TEST(OrdreDesDates, DepuisPlusieursFils) {
  std::vector<TDateRQ> dates;
  for (const auto& l : kLignes) {
    dates.push_back(l.a.Date());
    dates.push_back(l.b.Date());
  }
  std::vector<std::vector<int>> resultats(4);
  std::vector<std::thread> fils;
  for (int f = 0; f < 4; ++f)
    fils.emplace_back([&, f] {
      for (std::size_t i = 0; i < dates.size(); ++i)
        for (std::size_t j = 0; j < dates.size(); ++j) resultats[f].push_back(TDateRQ::CompareDate(dates[i], dates[j], 0));
      for (int annee = 6001; annee < 6400; ++annee) resultats[f].push_back(ConvAnneeHebrGreg(annee));
      for (int annee = 20; annee < 99; ++annee) resultats[f].push_back(ConvAnneeRepubGreg(annee));
    });
  for (auto& t : fils) t.join();
  for (int f = 1; f < 4; ++f) EXPECT_EQ(resultats[f], resultats[0]) << f;
  const std::size_t n = dates.size();
  for (std::size_t k = 0; k < std::size(kLignes); ++k) {
    if (kLignes[k].defaut == 0) {
      EXPECT_EQ(resultats[0][(2 * k) * n + 2 * k + 1], kLignes[k].attendu) << k;
    }
  }
  EXPECT_EQ(ConvAnneeHebrGreg(6001), 2241);
  EXPECT_EQ(ConvAnneeRepubGreg(20), 1812);
}

}  // namespace
}  // namespace rqbase
