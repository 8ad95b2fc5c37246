// TDateRQ : la valeur, ses années, ses fourchettes, ses parties et ses mots.
#include <gtest/gtest.h>

#include "rqbase/dates/bo_jours.h"
#include "dates_essai.h"
#include "rqbase/dates/calendriers.h"

namespace rqbase {
namespace {

using essai::D;

TEST(TDateRQ, ExportEtRelecture) {
  EXPECT_EQ(TDateRQ().ExportInString(), "");
  const TDateRQ avant = D("<", 'G', "01/02/1900");
  EXPECT_EQ(avant.ExportInString(), "# <G01/02/1900#");
  const TDateRQ relue("# <G01/02/1900#");
  EXPECT_TRUE(relue.MemesOctets(avant));
  EXPECT_EQ(TDateRQ("#caR10/VENT/05#").ExportInString(), "#caR10/VENT/05#");
  TDateRQ sansCalendrier;
  sansCalendrier.SetDate("01/02/1900");
  EXPECT_EQ(sansCalendrier.ExportInString(), "#  G01/02/1900#");
  // Voulu : une fourchette exportée (14 caractères) n'est pas relue comme telle.
  const TDateRQ fourchette = D("ca", 'G', "1850/1860");
  EXPECT_EQ(fourchette.ExportInString(), "#caG1850/1860#");
  EXPECT_EQ(TDateRQ(fourchette.ExportInString()).GetDate(), "");
  // Texte libre : calendrier R s'il en a la forme.
  const TDateRQ libre("fev 1872");
  EXPECT_EQ(libre.GetCalendrier(), 'G');
  EXPECT_EQ(libre.GetDate(), "../02/1872");
  EXPECT_EQ(TDateRQ("10/VENT/05").GetCalendrier(), 'R');
  EXPECT_EQ(TDateRQ(1850, "01/01/").GetDate(), "01/01/1850");
  EXPECT_EQ(TDateRQ(5, "../../").GetDate(), "../../0005");
}

TEST(TDateRQ, CopieEtAccesseurs) {
  TDateRQ d('?', "01/02/1900 ");
  EXPECT_EQ(d.GetDate(), "01/02/1900");
  EXPECT_EQ(TDateRQ(d).GetCalendrier(), 'G');  // la copie remplace '?' par 'G'
  TDateRQ e;
  e = d;
  EXPECT_EQ(e.GetCalendrier(), '?');  // l'affectation copie les 15 octets
  d.SetDate("0123456789ABC");
  EXPECT_EQ(d.GetDate(), "0123456789");
}

TEST(TDateRQ, VideEtActe) {
  EXPECT_TRUE(TDateRQ().Vide());
  EXPECT_TRUE(D(" ", 'G', "../../....").Vide());
  EXPECT_TRUE(D("", 'G', "..../.... ").DateVide());
  EXPECT_TRUE(D("", 'R', "../..../..").DateVide());
  EXPECT_FALSE(D("<", 'G', "").Vide());
  EXPECT_TRUE(D("Ca", 'G', "1850").IsActeImprecis());
  EXPECT_TRUE(D("?", 'G', "1850").IsActeImprecis());
  EXPECT_FALSE(D("c", 'G', "1850").IsActeImprecis());
  EXPECT_TRUE(D("al", 'G', "1850").NotActePrecisionDate());
  EXPECT_TRUE(D("", 'G', "1850").NotActePrecisionDate());
  EXPECT_FALSE(D("~", 'G', "1850").NotActePrecisionDate());
  EXPECT_TRUE(D("", 'F', "").DateFormatGregorien());
  EXPECT_TRUE(D("", 'G', "1850/1860 ").DateFormatFourchette());
  EXPECT_TRUE(D("", 'G', "01/02/1900").CalculDatePossible());
  EXPECT_FALSE(D("", 'R', "01/02/1900").CalculDatePossible());
  EXPECT_TRUE(D("", 'A', "n'importe").CalculDatePossible());
  std::string annee;
  EXPECT_TRUE(D("", 'G', "").AnneeDateVide(&annee));
  EXPECT_EQ(annee, "....");
  EXPECT_FALSE(D("", 'R', "10/VENT/05").AnneeDateVide(&annee));
  EXPECT_EQ(annee, "05");
}

TEST(TDateRQ, LesQuestionsSurLAnneeChangentLaDate) {
  TDateRQ environ = D("ca", 'G', "../../1850");
  EXPECT_EQ(environ.RecupAnnee(false), 1850);
  EXPECT_EQ(environ.GetDate(), "1850/1850");
  EXPECT_EQ(environ.GetActe(), "");
  TDateRQ avant = D("<", 'G', "12/05/1850");
  EXPECT_EQ(avant.RecupAnnee(false), 1850);
  EXPECT_EQ(avant.GetDate(), "1850/1850");
  EXPECT_EQ(avant.GetActe(), "<");
  TDateRQ copie = D("p", 'G', "12/05/1850");
  copie.RecupAnnee(false);
  EXPECT_EQ(copie.GetDate(), "12/05/1850");  // un acte documentaire ne change rien

  const TDateRQ ouverte = D("", 'G', "1850/....");
  int bas = 0, haut = 0, moyen = 0;
  EXPECT_EQ(ouverte.RecupAnneeFourchetteEstim(false, &bas, &haut, nullptr, &moyen, true), "1900");
  EXPECT_EQ(bas, 1850);
  EXPECT_EQ(haut, 1950);
  ouverte.RecupAnneeFourchetteEstim(false, &bas, &haut, nullptr, &moyen, false);
  EXPECT_EQ(bas, 1850);
  EXPECT_EQ(haut, 0);
  int defaut = 1234;
  EXPECT_EQ(D("", 'G', "..../....").RecupAnneeFourchetteEstim(false, &bas, &haut, &defaut, nullptr, true), "1234");
  // Conversion des années : par le jour fixe du milieu de l'année.
  EXPECT_EQ(D("", 'R', "01/VEND/05").RecupAnneeChn(true), "1797");
  EXPECT_EQ(D("", 'H', "05/02/5784").RecupAnneeChn(true), "2024");
  EXPECT_EQ(D("", 'R', "05/07").RecupAnneeChn(true), "1798");
}

TEST(TDateRQ, AnneeFractionnaire) {
  TDateRQ d = D("", 'G', "01/07/1500");  // 1500 : 366 jours dans ce programme
  EXPECT_FLOAT_EQ(d.RecupAnneeFloat(false), 1500.0f + 182.0f / 366.0f);
  d = D("", 'G', "01/07/1504");  // 1504 : 365
  EXPECT_FLOAT_EQ(d.RecupAnneeFloat(false), 1504.0f + 181.0f / 365.0f);
  d = D("", 'G', "../../1850");
  EXPECT_FLOAT_EQ(d.RecupAnneeFloat(false), 1850.0f);
  bool fourchette = false;
  int bas = 0, haut = 0;
  d = D("", 'G', "1850/1860");
  EXPECT_EQ(d.RecupAnneeFloat(false, &bas, &haut, &fourchette), kIncalculableF);
  EXPECT_TRUE(fourchette);
  EXPECT_EQ(haut, 1860);
  d = D("", 'G', "../../....");
  EXPECT_EQ(d.RecupAnneeFloat(false), kIncalculableF);
}

TEST(TDateRQ, IntervalleDAnnees) {
  float annee = 0;
  TInterval<float> iv;
  D("", 'G', "15/06/1850").CalculAnneeFloatOuFourchette(annee, iv);
  EXPECT_NEAR(annee, 1850.0f + 5.0f / 12.0f + 15.0f / 365.242f, 1e-3);
  iv = {};
  D("ca", 'G', "../../1850").CalculAnneeFloatOuFourchette(annee, iv);
  EXPECT_NEAR(iv.Inf, 1849.0f + 1.0f / 365.242f, 1e-3);
  EXPECT_NEAR(iv.Sup, 1851.0f + 11.0f / 12.0f + 31.0f / 365.242f, 1e-3);
  EXPECT_EQ(annee, kIncalculableF);
  iv = {};
  D("<", 'G', "../../1850").CalculAnneeFloatOuFourchette(annee, iv);
  EXPECT_TRUE(iv.InfOuvert);
  iv = {};
  D("", 'A', "1850/1860").CalculAnneeFloatOuFourchette(annee, iv);
  EXPECT_FLOAT_EQ(iv.Inf, -1850.0f);
  EXPECT_FLOAT_EQ(iv.Sup, -1860.0f + 0.99f);
  iv = {};
  D("", 'A', "15/06/0050").CalculAnneeFloatOuFourchette(annee, iv);
  EXPECT_LT(annee, 0.0f);
  bool vide = true;
  EXPECT_EQ(D("", 'G', "15/06/1850").ConstruitActeAnneeChn(0, vide, false), "1850");
  EXPECT_EQ(D("", 'G', "1850/1851").ConstruitActeAnneeChn(0, vide, false), "~1850");
  EXPECT_EQ(D("<", 'G', "1850").ConstruitActeAnneeChn(1850, vide, true), "<1850");
  EXPECT_EQ(D("", 'G', "..../....").ConstruitActeAnneeChn(0, vide, true), "?");
  EXPECT_TRUE(vide);
}

TEST(TDateRQ, Fourchettes) {
  TDateRQ f = D("", 'G', "1850/....");
  f.TransformeFourchetteDate();
  EXPECT_EQ(f.GetDate(), "00/00/1851");
  f = D("", 'G', "..../1860");
  f.TransformeFourchetteDate();
  EXPECT_EQ(f.GetDate(), "00/00/1859");
  f = D("", 'R', "05/07");
  f.TransformeFourchetteDate();
  EXPECT_EQ(f.GetDate(), "00/00/1798");
  EXPECT_EQ(f.GetCalendrier(), 'G');
  f = D("", 'R', "05/07");
  EXPECT_TRUE(f.CalculDateMoyenneFourchette(false));
  EXPECT_EQ(f.GetDate(), "01/PLUV/06");
  f = D("", 'R', "05/07");
  EXPECT_TRUE(f.CalculDateMoyenneFourchette(true));
  EXPECT_EQ(f.GetDate(), "01/01/1798");
  EXPECT_FALSE(D("", 'G', "..../....").CalculDateMoyenneFourchette(true));
  EXPECT_EQ(D(">", 'G', "12/05/1850").GetDateLimiteFourchette(false).GetDate(), "01/01/1850");
  EXPECT_EQ(D(">", 'G', "12/05/1850").GetDateLimiteFourchette(true).GetDate(), "31/12/0000");
  EXPECT_EQ(D("", 'G', "1850/1860").GetDateLimiteFourchette(true).GetDate(), "31/12/1860");
  EXPECT_EQ(D("", 'G', "12/05/1850").GetDateLimiteFourchette(true).GetDate(), "12/05/1850");
  // Républicain : la borne ouverte a la largeur de l'année républicaine, "05/..".
  EXPECT_EQ(D("<", 'R', "10/VENT/05").GetDateLimiteFourchette(true).GetDate(), "31/12/1797");
  EXPECT_EQ(D(">", 'R', "10/VENT/05").GetDateLimiteFourchette(false).GetDate(), "01/01/1797");
  EXPECT_TRUE(D("", 'G', "12/05/1850").DateDansFourchette("1850", "0"));
  EXPECT_FALSE(D("", 'G', "12/05/1850").DateDansFourchette("1851", ""));
  short bas = 0, haut = 0;
  D("", 'G', "1850/1860").AjusteFourchette(bas, haut, true);
  D("", 'G', "01/01/1870").AjusteFourchette(bas, haut, true);
  EXPECT_EQ(bas, 1850);
  EXPECT_EQ(haut, 1870);
  TDateRQ large = D("", 'G', "01/01/1850");
  MajFourchetteAnnee(large, "10/VENT/05");
  EXPECT_EQ(large.GetDate(), "1797/1850");
  EXPECT_EQ(D("", 'G', "01/01/1850").DateIn(D("", 'G', "01/01/1800"), D("", 'G', "01/01/1900")), 0);
  EXPECT_EQ(D("", 'G', "01/01/1950").DateIn(D("", 'G', "01/01/1800"), D("", 'G', "01/01/1900")), 1);
  EXPECT_EQ(D("", 'G', "").DateIn(D("", 'G', "01/01/1800"), D("", 'G', "01/01/1900")), 1);
  // Des années -50 à 0 : 51 ans, dont l'an 0, séculaire, bissextile.
  EXPECT_EQ(D("", 'A', "01/01/0050").CalcNbJoursAbs(true), -(51 * 365 + 1));
}

TEST(TDateRQ, Decalage) {
  struct {
    const char* date;
    int n;
    const char* attendu;
  } lignes[] = {
      {"15/06/1850", 10, "25/06/1850"}, {"25/06/1850", 10, "04/07/1850"}, {"15/06/1850", 400, "../../1851"},
      {"15/06/1850", 60, "../08/1850"}, {"15/06/1850", -10, "05/06/1850"}, {"05/01/1850", -10, "26/12/1849"},
      {"../../1850", 5, "06/01/1850"},
  };
  for (const auto& l : lignes) {
    TDateRQ d = D("", 'G', l.date);
    EXPECT_TRUE(d.Decalage(l.n));
    EXPECT_EQ(d.GetDate(), l.attendu) << l.date << " " << l.n;
  }
  TDateRQ vide = D("", 'G', "../../....");
  EXPECT_FALSE(vide.Decalage(10));
  EXPECT_EQ(vide.GetDate(), "../../....");
}

TEST(TDateRQ, JourDeLaSemaine) {
  struct {
    const char* date;
    int attendu;  // 1 = dimanche, 0 = incalculable
  } lignes[] = {
      {"01/01/2000", 7}, {"14/07/1789", 3}, {"29/02/1500", 7}, {"29/02/1504", 0}, {"../01/2000", 0},
      // Voulu : toute l'année 1582 suit la règle grégorienne (le 9 décembre julien était un dimanche).
      {"09/12/1582", 5}, {"20/12/1582", 2}, {"04/10/1582", 2},
  };
  for (const auto& l : lignes) {
    std::string abrege, complet;
    short numero = -1;
    EXPECT_EQ(D("", 'G', l.date).RetourneJourSemaine(abrege, complet, &numero, false), l.attendu) << l.date;
  }
  std::string abrege, complet;
  short numero = 0;
  D("", 'R', "10/VENT/05").RetourneJourSemaine(abrege, complet, &numero, true);
  EXPECT_EQ(abrege, "Mar ");
  EXPECT_EQ(complet, "Mardi ");
  EXPECT_EQ(numero, 2);
}

TEST(TDateRQ, SaisonsEtZodiaque) {
  struct {
    const char* date;
    int saison;
    const char* texte;
  } lignes[] = {
      {"01/07/1900", 1, "Au cours des premiers jours de l'été"},
      {"02/07/1900", 1, "Durant le deuxième mois de l'été"},
      {"21/03/1900", 3, "Dernier jour de l'hiver"},
      {"20/06/1900", 0, "Avant dernier jour du printemps"},
      {"05/09/1900", 1, "Durant le dernier mois de l'été"},
      {"15/12/1900", 2, "Au cours des derniers jours de l'automne"},
      {"22/12/1900", 3, "Premier jour de l'hiver"},
      {"24/09/1900", 2, "Troisième jour de l'automne"},
      {"28/03/1900", 0, "Au cours des premiers jours du printemps"},
      {"../03/1900", -1, "Saison inconnue"},
      {"../01/1900", 3, "Durant le deuxième mois de l'hiver"},
      {"../../1900", -1, "Saison inconnue"},
  };
  for (const auto& l : lignes) {
    std::string texte;
    EXPECT_EQ(D("", 'G', l.date).GetSaison(&texte), l.saison) << l.date;
    EXPECT_EQ(texte, l.texte) << l.date;
  }
  struct {
    const char* date;
    int signe;
  } signes[] = {{"21/03/1900", 0}, {"20/04/1900", 0}, {"21/04/1900", 1}, {"22/12/1900", 9}, {"20/01/1900", 9},
                {"21/01/1900", 10}, {"19/02/1900", 10}, {"20/02/1900", 11}, {"../01/1900", -1},
                // Voulu : sans jour, k vaut mois × 100 et peut tomber dans un signe.
                {"../03/1900", 11}};
  for (const auto& s : signes) {
    TDateRQ d = D("", 'G', s.date);
    EXPECT_EQ(d.GetSigneZodiaque(), s.signe) << s.date;
  }
  TDateRQ r = D("", 'R', "10/VENT/05");
  EXPECT_EQ(r.GetSigneZodiaque(), 11);
  EXPECT_EQ(r.GetCalendrier(), 'G');  // la question convertit la date
}

TEST(TDateRQ, Mots) {
  EXPECT_EQ(PreciseDate(1), "avant ");
  EXPECT_EQ(PreciseDate(17), "avant le ");
  EXPECT_EQ(PreciseDate(48), "vers le ");
  EXPECT_EQ(PreciseDate(16), "le ");
  EXPECT_EQ(PreciseDate(0), "");
  EXPECT_EQ(TDateRQ::PrefixeActe(" > ", true, false), "après ");
  EXPECT_EQ(TDateRQ::PrefixeActe("ca", false, false), "vers le ");
  EXPECT_EQ(TDateRQ::PrefixeActe("p", false, true), "le (p) ");
  EXPECT_EQ(TDateRQ::PrefixeActe("p", true, false), "en ");
  EXPECT_EQ(D("", 'G', "1850/1860").RedigeFourchette(), "entre 1850 et 1860");
  EXPECT_EQ(D("", 'G', "..../1860").RedigeFourchette(), "avant 1860");
  EXPECT_EQ(D("", 'G', "1850/....").RedigeFourchette(), "après 1850");
  EXPECT_EQ(D("", 'G', "1850/1850").RedigeFourchette(), "vers 1850");
  EXPECT_EQ(D("", 'G', "..../....").RedigeFourchette(), "");
  EXPECT_EQ(D("", 'G', "01/01/1850").RedigeFourchette(), "");
  EXPECT_EQ(D("<", 'G', "01/01/1850").RedigeAnnee(false), "avant 1850");
  EXPECT_EQ(D("", 'R', "10/VENT/05").RedigeAnnee(false), "en l'an 05");
  EXPECT_EQ(D("", 'G', "../../....").RedigeAnnee(false), "");
  EXPECT_EQ(D("", 'G', "01/01/1850").PlaceJour(true), "1er ");
  EXPECT_EQ(D("", 'G', "05/01/1850").PlaceJour(false), "5");
  EXPECT_EQ(D("", 'G', "../01/1850").PlaceJour(true), "");
  EXPECT_EQ(D("", 'G', "00/01/1850").PlaceJour(true), "");
  EXPECT_EQ(D("", 'G', "1850/....").FormatDateTilde(), "1850 ~ ....");
  EXPECT_EQ(D("", 'G', "05/01/1850").FormatDateTilde(), " ~ 1850");
  std::string court, nom;
  EXPECT_TRUE(D("", 'G', "../02/1850").DateIncomplete(&court, &nom, true));
  EXPECT_EQ(court, "Fév ");
  EXPECT_EQ(nom, "Février ");
  EXPECT_FALSE(D("", 'G', "10/02/1850").DateIncomplete(&court, &nom, false));
  EXPECT_TRUE(D("", 'R', "../VENT/05").DateIncomplete(&court, nullptr, false));
  EXPECT_EQ(court, "vent");
  EXPECT_TRUE(D("", 'G', "../../1850").DateIncomplete(&court, &nom, false));
  int a, m, j;
  EXPECT_TRUE(D("", 'G', "").IsDatePrecise(&a, &m, &j, "10/VENT/05", true));
  EXPECT_EQ(a, 1797);
  EXPECT_FALSE(D("", 'G', "").DateNiPreciseNiFourchette("1850/1860"));
  EXPECT_FALSE(D("", 'G', "").DateNiPreciseNiFourchette("../02/1850"));
  EXPECT_TRUE(D("", 'G', "").DateNiPreciseNiFourchette("15/../1850"));
  EXPECT_TRUE(D("", 'G', "").DateNiPreciseNiFourchette("../../...."));
}

}  // namespace
}  // namespace rqbase
