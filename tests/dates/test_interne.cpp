// Les aides internes des dates : lecture tolérante des entiers, écriture sur une largeur.
#include <gtest/gtest.h>

#include <climits>

#include "rqbase/dates/interne.h"

namespace rqbase::dates_interne {
namespace {

TEST(Interne, LectureTolerante) {
  struct {
    const char* texte;
    int attendu;
  } lignes[] = {
      {"1850", 1850},
      {"0005", 5},
      {"", 0},
      {"-", 0},
      {"-0", 0},
      {"--1", 0},  // un seul moins, en tête
      {"1-", 0},
      {"a-3b", -3},  // lettres filtrées
      {" 12 ", 12},
      {"1 2", 12},  // blancs filtrés aussi
      {"12.5", 12},  // arrêt au premier point
      {"5..", 5},
      {"..5", 0},
      {"../../1850", 0},
      {"1850/1860", 18501860},  // la barre est filtrée comme le reste
      {"15/VENT/05", 1505},
      {"2147483647", INT_MAX},
      {"0002147483647", INT_MAX},
      {"-2147483648", INT_MIN},
      {"2147483648", 0},  // dépassement
      {"-2147483649", 0},
      {"99999999999999999999", 0},
      {"000000000000000000012345", 1},  // vingt caractères au plus
  };
  for (const auto& l : lignes) EXPECT_EQ(ToIntInString(l.texte), l.attendu) << '"' << l.texte << '"';
  EXPECT_EQ(ToIntInString("ab1850", 2), 1850);
  EXPECT_EQ(ToIntInString("27/10/1969", 6), 1969);
  EXPECT_EQ(ToIntInString("1850", 9), 0);
}

TEST(Interne, EcritureSurUneLargeur) {
  struct {
    int valeur, largeur;
    const char* attendu;
  } lignes[] = {
      {0, 2, "00"},     {5, 4, "0005"},   {1850, 4, "1850"},  {12345, 4, "12345"},
      {42, 0, "42"},    {0, 0, "0"},      {-1, 4, "-001"},    {-42, 2, "-42"},
      {INT_MIN, 8, "-2147483648"},        {INT_MAX, 2, "2147483647"},
  };
  for (const auto& l : lignes) EXPECT_EQ(Zeros(l.valeur, l.largeur), l.attendu) << l.valeur << " " << l.largeur;
}

TEST(Interne, PartiesInconnuesEtFourchettesRepublicaines) {
  EXPECT_TRUE(QueDesPoints(".."));
  EXPECT_FALSE(QueDesPoints(""));
  EXPECT_FALSE(QueDesPoints(".1"));
  EXPECT_EQ(FourchetteRepublicaineEnGregorien("05/07"), "1797/1799");
  EXPECT_EQ(FourchetteRepublicaineEnGregorien("../07"), "..../1799");
  EXPECT_EQ(FourchetteRepublicaineEnGregorien("00/.."), "..../....");
}

}  // namespace
}  // namespace rqbase::dates_interne
