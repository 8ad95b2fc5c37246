// AnalyseDate sur ce que les utilisateurs tapent vraiment.
#include <gtest/gtest.h>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/calendriers.h"

namespace rqbase {
namespace {

struct TCas {
  const char* tape;
  char calendrier;
  bool souple;
  int code;
  const char* attendu;  // texte normalisé quand le code est -1
};

// Deux chiffres d'année : le siècle courant, ou le précédent si l'année serait à venir.
std::string Complete(int deux) {
  const int courante = GetAnneeCourante();
  int a = courante / 100 * 100 + deux;
  if (a > courante) a -= 100;
  return std::to_string(a);
}

TEST(AnalyseDate, FormesGregoriennes) {
  const TCas cas[] = {
      {"27/10/1969", 'G', true, -1, "27/10/1969"},
      {"27101969", 'G', true, -1, "27/10/1969"},
      {"fev 1872", 'G', true, -1, "../02/1872"},
      {"Février 1872", 'G', true, -1, "../02/1872"},
      {"févr. 1872", 'G', true, -1, "../02/1872"},
      {"7bre 1750", 'G', true, -1, "../09/1750"},
      {"1872", 'G', true, -1, "../../1872"},
      {"1872 fev", 'G', true, -1, "../02/1872"},
      {"1?/10/1969", 'G', true, -1, "1./10/1969"},
      {"?", 'G', true, -1, "../../...."},
      {"", 'G', true, -1, "../../...."},
      {"   ", 'g', true, -1, "../../...."},
      {"../02/1993", 'G', true, -1, "../02/1993"},
      {"12..1850", 'G', true, -1, "12/../1850"},
      {"15.10.1969", 'G', true, -1, "15/10/1969"},
      {"5-3-1850", 'G', true, -1, "05/03/1850"},
      {"1 2 3 4", 'G', true, -1, "01/02/0003"},
      {"18..", 'G', true, -1, "../../18.."},
      {"?17", 'H', true, -1, "../../..17"},
      {"15/10/1?17", 'G', true, -1, "15/10/1.17"},
      {"0", 'G', true, -1, "../../0000"},
      {"3000", 'G', true, -1, "../../3000"},
      {"29/02/1500", 'G', true, -1, "29/02/1500"},
      {"29/02/....", 'G', true, -1, "29/02/...."},
      {"1850/1860", 'G', true, -1, "1850/1860"},
      {"..../1860", 'G', true, -1, "..../1860"},
      {"1121969", 'G', true, -1, "01/12/1969"},  // forme compacte recoupée
      {"91125", 'G', true, -1, "09/01/0125"},    // recoupée : "9112" n'est pas une année
      // Cinq caractères qui commencent par une année : pas de recoupage en jour et
      // mois, le refus de la forme compacte (mois 50, 34) reste.
      {"1850?", 'G', true, 8, nullptr},
      {"18505", 'G', true, 8, nullptr},
      {"12345", 'G', true, 8, nullptr},
      {"1850?", 'G', false, 8, nullptr},
      // Une année recoupée qui n'est ni toute en chiffres ni toute en points : code 7.
      {"9112?", 'G', true, 7, nullptr},
      {"9121?5", 'G', true, 7, nullptr},
      {"9112?", 'A', true, 7, nullptr},
      {"32/01/1900", 'G', true, 9, nullptr},
      {"31/13/1900", 'G', true, 8, nullptr},
      {"01/01/12345", 'G', true, 4, nullptr},
      {"29/02/1504", 'G', true, 9, nullptr},
      {"29/02/1582", 'G', true, 9, nullptr},
      {"31/04/1900", 'G', true, 9, nullptr},
      {"3001", 'G', true, 7, nullptr},
      {"1850/3001", 'G', true, 7, nullptr},
      {"123/01/1900", 'G', true, 0, nullptr},
      {"?\?\?/10/1969", 'G', true, 0, nullptr},  // trois inconnus : trop long, même en points
      {".../10/1969", 'G', true, 0, nullptr},
      {"15/10/?????", 'G', true, 4, nullptr},
      {"15/10/.....", 'G', true, 4, nullptr},
      {"1?/.10/1969", 'G', true, 8, nullptr},
      {"12/123/1969", 'G', true, 8, nullptr},
      {"a1/01/1900", 'G', true, 1, nullptr},
      {"15 xyz 1900", 'G', true, 2, nullptr},
      {"15 10 19x0", 'G', true, 3, nullptr},
      {"99999999", 'G', true, 7, nullptr},
      {"15 oct", 'G', false, 3, nullptr},  // sans souplesse, pas de déplacement des parties
  };
  for (const auto& c : cas) {
    std::string date = c.tape;
    SCOPED_TRACE(c.tape);
    EXPECT_EQ(AnalyseDate(date, c.calendrier, c.souple), c.code);
    if (c.code == -1) {
      EXPECT_EQ(date, c.attendu);
    }
    else
      EXPECT_FALSE(MessageAnalyseDate(c.code).empty());
  }
}

TEST(AnalyseDate, AnneesSurDeuxChiffres) {
  std::string date = "27/10/69";
  EXPECT_EQ(AnalyseDate(date, 'G', true), -1);
  EXPECT_EQ(date, "27/10/" + Complete(69));
  date = "15 oct 95";
  EXPECT_EQ(AnalyseDate(date, 'G', true), -1);
  EXPECT_EQ(date, "15/10/" + Complete(95));
  date = "15 oct";
  EXPECT_EQ(AnalyseDate(date, 'G', true), -1);
  EXPECT_EQ(date, "15/10/....");
}

TEST(AnalyseDate, RepublicainEtHebreu) {
  const TCas cas[] = {
      {"10 ventose 5", 'R', true, -1, "10/VENT/05"},
      {"10/VENT/05", 'R', true, -1, "10/VENT/05"},
      {"100605", 'R', true, -1, "10/VENT/05"},
      {"6 comp 3", 'R', true, -1, "06/COMP/03"},
      {"1 13 11", 'R', true, -1, "01/COMP/11"},
      {"brum 8", 'R', true, -1, "../BRUM/08"},
      {"05/07", 'R', true, -1, "05/07"},
      {"", 'R', true, -1, "../..../.."},
      {"6 comp 4", 'R', true, 9, nullptr},
      {"1 vend 20", 'R', true, 7, nullptr},
      {"1 vend 1797", 'R', true, 4, nullptr},
      {"1 vend ???", 'R', true, 4, nullptr},
      {"1 14 5", 'R', true, 2, nullptr},
      {"15 nissan 5784", 'H', true, -1, "15/08/5784"},
      {"30 adar 5784", 'H', true, -1, "30/06/5784"},
      {"29 adII 5784", 'H', true, -1, "29/07/5784"},
      {"30/07/5784", 'H', true, 9, nullptr},
      {"01/14/5784", 'H', true, 8, nullptr},
      {"01/01/3760", 'H', true, 7, nullptr},
      {"991205", 'R', true, 7, nullptr},  // jour 99 : recoupée en "9/9/1205", année trop longue
      {"15/03/0050", 'A', true, -1, "15/03/0050"},
  };
  for (const auto& c : cas) {
    std::string date = c.tape;
    SCOPED_TRACE(c.tape);
    EXPECT_EQ(AnalyseDate(date, c.calendrier, c.souple), c.code);
    if (c.code == -1) {
      EXPECT_EQ(date, c.attendu);
    }
  }
}

// Un mois en lettres : égalité d'abord, puis début de nom, sans casse ni accents,
// sur les deux formes courtes et les deux noms ; le premier mois qui convient l'emporte.
TEST(AnalyseDate, MoisEnLettres) {
  struct {
    char calendrier;
    const char* tape;
    const char* attendu;  // nullptr : mois inconnu, code 2
  } lignes[] = {
      {'G', "j", "01/01/1850"},        {'G', "JANVIER", "01/01/1850"}, {'G', "ju", "01/06/1850"},
      {'G', "jui", "01/06/1850"},      {'G', "juil", "01/07/1850"},    {'G', "jun", "01/06/1850"},
      {'G', "a", "01/04/1850"},        {'G', "ao", "01/08/1850"},      {'G', "août", "01/08/1850"},
      {'G', "AOÛT", "01/08/1850"},     {'G', "m", "01/03/1850"},       {'G', "mai", "01/05/1850"},
      {'G', "mar", "01/03/1850"},      {'G', "févr.", "01/02/1850"},   {'G', "s", "01/09/1850"},
      {'G', "7bre", "01/09/1850"},     {'G', "8b", "01/10/1850"},      {'G', "x", "01/12/1850"},
      {'G', "déc", "01/12/1850"},      {'G', "janvierr", nullptr},     {'G', "jx", nullptr},
      {'G', "bre", nullptr},           {'R', "v", "01/VEND/03"},       {'R', "ven", "01/VEND/03"},
      {'R', "vent", "01/VENT/03"},     {'R', "ventôse", "01/VENT/03"}, {'R', "f", "01/FRIM/03"},
      {'R', "fru", "01/FRUC/03"},      {'R', "c", "01/COMP/03"},       {'R', "complémentaires", "01/COMP/03"},
      {'R', "nivose", "01/NIVO/03"},   {'R', "messidorr", nullptr},    {'H', "t", "01/01/5784"},
      {'H', "te", "01/04/5784"},       {'H', "a", "01/06/5784"},       {'H', "adii", "01/07/5784"},
      {'H', "ad2", "01/07/5784"},      {'H', "av", "01/12/5784"},      {'H', "e", "01/13/5784"},
      {'H', "x", nullptr},
  };
  for (const auto& l : lignes) {
    std::string date = std::string("1 ") + l.tape + (l.calendrier == 'R' ? " 3" : l.calendrier == 'H' ? " 5784" : " 1850");
    SCOPED_TRACE(date);
    const int code = AnalyseDate(date, l.calendrier, true);
    if (l.attendu) {
      EXPECT_EQ(code, -1);
      EXPECT_EQ(date, l.attendu);
    } else {
      EXPECT_EQ(code, 2);
    }
  }
}

TEST(AnalyseDate, UnRefusGardeLeTexteTape) {
  std::string date = "  32/01/1900 ";
  EXPECT_EQ(AnalyseDate(date, 'G', true), 9);
  EXPECT_EQ(date, "32/01/1900");
}

TEST(AnalyseDate, PointsPartout) {
  // Des points à chaque place : jamais de plantage, un code ou un texte de 10 caractères au plus.
  const char* formes[] = {".", "..", "...", "./.", "../..", "../../..", "../../.....", "./../1850", "1./2./18..",
                          "...1850", "1850...", ".1850.", "..-..-....", ". . .", "../..../..", "..../....",
                          "1.2.3", "1..2..3", "...../1850"};
  for (const char* f : formes) {
    for (char cal : {'G', 'R', 'H', 'A'}) {
      std::string date = f;
      const int code = AnalyseDate(date, cal, true);
      if (code == -1) {
        EXPECT_LE(date.size(), 10u) << f << " " << cal;
      }
    }
  }
}

}  // namespace
}  // namespace rqbase
