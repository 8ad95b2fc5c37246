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
