// Les chemins rapides des dates confrontés à leur écriture directe : CompareDate
// à la suite d'opérations publiques qu'il abrège, la table des mois en lettres à la
// lecture des textes numérotés, les conversions entières à ConvJuif complet, et
// les lectures de nombres à from_chars et snprintf. Des dates de toutes formes,
// tirées au hasard avec une graine fixe.
#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/bo_jours.h"
#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/convjuif.h"
#include "rqbase/dates/interne.h"

namespace rqbase {
namespace {

// CompareDate écrit pas à pas : deux copies converties en grégorien, l'année lue
// par RecupAnnee (qui change la copie), puis les règles de l'ordre.
int CompareDateDirect(TDateRQ d1, TDateRQ d2, int defaut) {
  auto signe = [](int v) { return (v > 0) - (v < 0); };
  const char calendrier1 = d1.GetCalendrier(), calendrier2 = d2.GetCalendrier();
  d1.ConvVersGregInterne();
  d2.ConvVersGregInterne();
  int min1 = 0, max1 = 0, min2 = 0, max2 = 0;
  int y1 = d1.RecupAnnee(true, &min1, &max1, nullptr, nullptr, true);
  int y2 = d2.RecupAnnee(true, &min2, &max2, nullptr, nullptr, true);
  bool f1 = d1.DateFormatFourchette(), f2 = d2.DateFormatFourchette();
  bool echange = false;
  if (f2 && !f1) {
    std::swap(d1, d2);
    std::swap(y1, y2);
    std::swap(min1, min2);
    std::swap(max1, max2);
    std::swap(f1, f2);
    echange = true;
  }
  int r;
  if (!f1 && !f2) {
    const std::string k1 = y1 ? d1.RetAnneeMoisJour() : std::string();
    const std::string k2 = y2 ? d2.RetAnneeMoisJour() : std::string();
    r = signe(k1.compare(k2));
  } else if (f1 && f2) {
    r = (max1 < min2 || (max1 == min2 && min1 < max2)) ? -1 : (max2 < min1) ? 1 : 0;
  } else {
    bool regle = true;
    if (y2 && min1 && min1 > y2)
      r = 1;
    else if (max1 && max1 < y2)
      r = -1;
    else if (y2 && min1 && max1)
      r = 0;
    else {
      r = defaut;
      regle = false;
    }
    if (echange && regle) r = -r;
  }
  if (calendrier1 == 'A' && calendrier2 == 'A') return -r;
  if (calendrier1 == 'A') return -1;
  if (calendrier2 == 'A') return 1;
  return r;
}

class TTirage {
 public:
  explicit TTirage(unsigned graine) : alea_(graine) {}
  int Entier(int n) { return static_cast<int>(alea_() % static_cast<unsigned>(n)); }

  // Une partie de date : connue, en points, à zéro ou à moitié connue.
  std::string Partie(int largeur, int maxi) {
    char t[16];
    std::snprintf(t, sizeof t, "%0*d", largeur, Entier(maxi + 1));
    std::string s = t;
    switch (Entier(8)) {
      case 0: return std::string(largeur, '.');
      case 1: return std::string(largeur, '0');
      case 2: s[Entier(largeur)] = '.'; return s;
      default: return s;
    }
  }

  std::string TexteDate() {
    static const char* kCodes[] = {"VEND", "BRUM", "FLOR", "FRUC", "COMP", "comp", "Flor", "....", "XXXX"};
    std::string s;
    switch (Entier(9)) {
      case 0: case 1: s = Partie(2, 32) + "/" + Partie(2, 14) + "/" + Partie(4, Entier(2) ? 2100 : 9999); break;
      case 2: s = Partie(2, 31) + "/" + kCodes[Entier(9)] + "/" + Partie(2, Entier(2) ? 15 : 99); break;
      case 3: s = Partie(4, 9999) + "/" + Partie(4, 9999); break;
      case 4: s = Partie(2, 25) + "/" + Partie(2, 25); break;
      case 5: s = Partie(2, 30) + "/" + Partie(2, 13) + "/" + Partie(4, 6000); break;
      case 6: for (int i = Entier(12); i > 0; --i) s += "0123456789./ -?a"[Entier(16)]; break;
      case 7: s = Partie(2, 31) + "/" + Partie(2, 12) + "/" + Partie(2, 99); break;
      default: s = Partie(2, 28) + "/" + Partie(2, 12) + "/" + Partie(4, 2099); break;
    }
    if (Entier(10) == 0) s += std::string(1 + Entier(2), ' ');
    return s;
  }

  // Une date de toutes formes et de tous calendriers ; parfois relue de sa forme
  // exportée, avec des octets que la saisie ne laisse pas passer (zéro, tabulation).
  TDateRQ Date() {
    static const char kCalendriers[] = {'G', 'G', 'R', 'R', 'H', 'H', 'A', 'A', '?', 'F', ' ', 'x'};
    static const char* kActes[] = {"", "", "", "<", ">", "~", "ca", "Ca", "c", "p", " <", "> ", "?", "al", "~ "};
    if (Entier(10) == 0) {
      std::string exporte = "#" + std::string(1, " <~c"[Entier(4)]) + std::string(1, "<>a "[Entier(4)]) +
                            kCalendriers[Entier(sizeof kCalendriers)] + (TexteDate() + "          ").substr(0, 10) + "#";
      exporte[4 + Entier(10)] = "\0\t /"[Entier(4)];
      return TDateRQ(std::string_view(exporte));
    }
    TDateRQ d(kCalendriers[Entier(sizeof kCalendriers)], TexteDate());
    d.SetActe(kActes[Entier(sizeof kActes / sizeof *kActes)]);
    return d;
  }

 private:
  std::mt19937 alea_;
};

TEST(Differentiel, CompareDateEgaleSonEcritureDirecte) {
  TTirage tirage(2024);
  std::vector<TDateRQ> dates;
  for (int i = 0; i < 3000; ++i) dates.push_back(tirage.Date());
  int differences = 0;
  for (int i = 0; i < 150000; ++i) {
    const TDateRQ& a = dates[tirage.Entier(3000)];
    const TDateRQ& b = tirage.Entier(40) ? dates[tirage.Entier(3000)] : a;
    const int defaut = tirage.Entier(4) - 1;
    const TDateRQ copieA = a, copieB = b;
    const int attendu = CompareDateDirect(a, b, defaut);
    const int obtenu = TDateRQ::CompareDate(a, b, defaut);
    if (obtenu != attendu && ++differences <= 10)
      ADD_FAILURE() << a.ExportInString() << " " << b.ExportInString() << " défaut " << defaut << " : " << obtenu
                    << " au lieu de " << attendu;
    // Les dates comparées ne changent pas.
    ASSERT_TRUE(a.MemesOctets(copieA) && b.MemesOctets(copieB));
  }
  EXPECT_EQ(differences, 0);
}

// Les années gardées (1er Tichri, conversions d'années) se remplissent au premier
// besoin : des fils qui les remplissent ensemble trouvent ce que trouve un fil seul.
TEST(Differentiel, ComparaisonsEtConversionsDepuisPlusieursFils) {
  TTirage tirage(77);
  std::vector<TDateRQ> dates;
  for (int i = 0; i < 2000; ++i) dates.push_back(tirage.Date());
  std::vector<std::vector<int>> resultats(4);
  std::vector<std::thread> fils;
  for (int f = 0; f < 4; ++f)
    fils.emplace_back([&, f] {
      for (int i = 0; i < 2000; ++i) resultats[f].push_back(TDateRQ::CompareDate(dates[i], dates[(i * 7 + f) % 2000], 0));
      for (int annee = 5000 + f; annee < 6000; annee += 3) resultats[f].push_back(ConvAnneeHebrGreg(annee));
    });
  for (auto& t : fils) t.join();
  for (int f = 0; f < 4; ++f) {
    std::size_t k = 0;
    for (int i = 0; i < 2000; ++i, ++k)
      ASSERT_EQ(resultats[f][k], CompareDateDirect(dates[i], dates[(i * 7 + f) % 2000], 0)) << f << " " << i;
    for (int annee = 5000 + f; annee < 6000; annee += 3, ++k) {
      ConvJuif conv;
      const int attendu = conv.convJuif_civil("18/08/" + dates_interne::Zeros(annee, 4))
                              ? dates_interne::ToIntInString(conv.getReponse().substr(6, 4))
                              : 0;
      ASSERT_EQ(resultats[f][k], attendu) << annee;
    }
  }
}

// Conversions hébraïques et républicaines de dates entières, de leurs mois et de
// leurs années : la forme courte de la conversion rend ce que rend le calcul complet.
TEST(Differentiel, ConversionsEntieresEgalesAuCalculComplet) {
  char t[16];
  for (int annee = 3761; annee <= 9999; annee += 7)
    for (int mois = 1; mois <= 13; ++mois)
      for (int jour : {1, 15, 29, 30}) {
        std::snprintf(t, sizeof t, "%02d/%02d/%04d", jour, mois, annee);
        ConvJuif complet;
        const std::string attendu = complet.convJuif_civil(t) ? complet.getReponse() : std::string();
        ASSERT_EQ(ConvHebraiqueGregorien(t), attendu) << t;
      }
  // Le 1er Tichri gardé tombe le jour de semaine du comput refait pas à pas, et
  // l'année qu'il ouvre a la longueur de son nombre de mois.
  for (int annee = 1; annee <= 14000; ++annee) {
    ConvJuif etapes;
    const std::int64_t debut = ConvJuif::JdnRochHachana(annee), fin = ConvJuif::JdnRochHachana(annee + 1);
    ASSERT_EQ(etapes.caractHebPart(annee), static_cast<int>((debut + 1) % 7) + 1) << annee;
    const std::int64_t duree = fin - debut - (etapes.embolismic(annee) == 13 ? 384 : 354);
    ASSERT_TRUE(duree >= -1 && duree <= 1) << annee;
  }
  for (int annee = 1; annee <= 99; ++annee) {
    std::snprintf(t, sizeof t, "07/FLOR/%02d", annee);
    EXPECT_EQ(ConvAnneeRepubGreg(annee), dates_interne::ToIntInString(ConvRepublicainGregorien(t).substr(6, 4))) << annee;
  }
}

// Un mois en lettres : la table repliée une fois donne ce que donne la lecture
// des textes numérotés à chaque saisie, pour chaque début de chaque nom.
TEST(Differentiel, MoisEnLettresDeLaTableRepliee) {
  struct TCalendrier {
    char code;
    int nombre;
  };
  for (const TCalendrier c : {TCalendrier{'G', 12}, TCalendrier{'H', 13}, TCalendrier{'R', 13}}) {
    std::vector<std::vector<std::string>> noms(c.nombre + 1);
    for (int m = 1; m <= c.nombre; ++m) {
      std::string c1, n1, c2, n2;
      int no2 = 0;
      if (c.code == 'R') {
        RetourneMoisRepublicain2(m, c1, n1, no2);
        noms[m] = {c1, n1};
      } else {
        (c.code == 'H' ? RetourneMoisHebraique : RetourneMoisGregorien)(m, c1, n1, true);
        (c.code == 'H' ? RetourneMoisHebraique : RetourneMoisGregorien)(m, c2, n2, false);
        noms[m] = {c1, n1, c2, n2};
      }
    }
    auto cherche = [&](const std::string& tape) {
      const std::string r = dates_interne::Replie(tape);
      for (int m = 1; m <= c.nombre; ++m)
        for (const auto& n : noms[m])
          if (dates_interne::Replie(n) == r) return m;
      for (int m = 1; m <= c.nombre; ++m)
        for (const auto& n : noms[m])
          if (n.size() > r.size() && dates_interne::Replie(n).compare(0, r.size(), r) == 0) return m;
      return 0;
    };
    int essais = 0;
    for (int m = 1; m <= c.nombre; ++m)
      for (const auto& n : noms[m])
        for (std::size_t l = 1; l <= n.size(); ++l) {
          const std::string tape = n.substr(0, l);
          // Un séparateur découpe la saisie ; des chiffres seuls ("7" de "7bre") sont un mois en chiffres.
          if (tape.find_first_of(" -|_,;.:/*+") != std::string::npos) continue;
          if (tape.find_first_not_of("0123456789") == std::string::npos) continue;
          const int attendu = cherche(tape);
          std::string date = "1 " + tape + (c.code == 'R' ? " 3" : c.code == 'H' ? " 5784" : " 1850");
          const int code = AnalyseDate(date, c.code, true);
          ++essais;
          if (attendu == 0) {
            EXPECT_EQ(code, 2) << c.code << " " << tape;
            continue;
          }
          ASSERT_EQ(code, -1) << c.code << " " << tape;
          std::string courant, nom;
          int no2 = 0;
          if (c.code == 'R') RetourneMoisRepublicain2(attendu, courant, nom, no2);
          const std::string mois = c.code == 'R' ? date.substr(3, 4) : date.substr(3, 2);
          EXPECT_EQ(mois, c.code == 'R' ? courant : dates_interne::Zeros(attendu, 2)) << c.code << " " << tape;
        }
    EXPECT_GT(essais, 100) << c.code;
  }
}

// Lecture d'un entier et écriture sur une largeur : comme from_chars sur les seuls
// chiffres et signes moins avant le premier point, et comme "%0*d".
TEST(Differentiel, NombresCommeFromCharsEtSnprintf) {
  auto lectureDirecte = [](std::string_view texte, std::size_t debut) {
    if (debut >= texte.size()) return 0;
    std::string_view morceau = texte.substr(debut, 20);
    if (auto point = morceau.find('.'); point != std::string_view::npos) morceau = morceau.substr(0, point);
    std::string filtre;
    for (char c : morceau)
      if ((c >= '0' && c <= '9') || c == '-') filtre += c;
    int valeur = 0;
    auto [fin, erreur] = std::from_chars(filtre.data(), filtre.data() + filtre.size(), valeur);
    return (filtre.empty() || erreur != std::errc() || fin != filtre.data() + filtre.size()) ? 0 : valeur;
  };
  TTirage tirage(9);
  for (int i = 0; i < 100000; ++i) {
    std::string t;
    for (int k = tirage.Entier(26); k > 0; --k) t += "0123456789-.a 0"[tirage.Entier(15)];
    const std::size_t debut = tirage.Entier(4) ? 0 : static_cast<std::size_t>(tirage.Entier(30));
    ASSERT_EQ(dates_interne::ToIntInString(t, debut), lectureDirecte(t, debut)) << "\"" << t << "\" " << debut;
  }
  for (const char* t : {"2147483647", "2147483648", "-2147483648", "-2147483649", "0002147483647", "-", "--1", "1-",
                        "99999999999999999999", "12.5", "a-3b"})
    EXPECT_EQ(dates_interne::ToIntInString(t), lectureDirecte(t, 0)) << t;
  for (int v : {0, 5, 42, 999, 1850, 12345, 2147483647, -1, -42, -2147483647 - 1})
    for (int largeur : {0, 1, 2, 4, 8}) {
      char attendu[32];
      std::snprintf(attendu, sizeof attendu, "%0*d", largeur, v);
      EXPECT_EQ(dates_interne::Zeros(v, largeur), attendu) << v << " " << largeur;
    }
}

}  // namespace
}  // namespace rqbase
