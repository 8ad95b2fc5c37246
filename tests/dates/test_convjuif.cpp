// Étapes du comput hébraïque.
#include <gtest/gtest.h>

#include "rqbase/dates/convjuif.h"

namespace rqbase {
namespace {

TEST(ConvJuif, AnneesEmbolismiquesEtMolad) {
  ConvJuif c;
  EXPECT_EQ(c.embolismic(5784), 13);
  EXPECT_EQ(c.embolismic(5783), 12);
  EXPECT_EQ(c.embolismic(5776), 13);  // reste 0
  // Molad de Tichri de l'an 1 : lundi 5 h 204 parties (BaHaRaD).
  EXPECT_EQ(c.caractHebPart(1), 2);
  c.moladTichri();
  EXPECT_EQ(c.JourMolad(), 2);
  EXPECT_EQ(c.HeureMolad(), 5);
  EXPECT_EQ(c.MinutesMolad() * 18 + c.PartiesMolad(), 204);
}

TEST(ConvJuif, RochHachanaJamaisDimancheMercrediVendredi) {
  ConvJuif c;
  for (int annee = 1; annee < 14000; ++annee) {
    const int jour = c.caractHebPart(annee);
    ASSERT_TRUE(jour == 2 || jour == 3 || jour == 5 || jour == 7) << annee;
    // Le jour du comput pas à pas (1 = dimanche) est celui du numéro de jour julien
    // par lequel les dates se placent.
    ASSERT_EQ(jour, static_cast<int>((ConvJuif::JdnRochHachana(annee) + 1) % 7) + 1) << annee;
    const auto duree = ConvJuif::JdnRochHachana(annee + 1) - ConvJuif::JdnRochHachana(annee);
    ASSERT_TRUE(duree == 353 || duree == 354 || duree == 355 || duree == 383 || duree == 384 || duree == 385)
        << annee;
  }
}

TEST(ConvJuif, ConversionsEtResultats) {
  ConvJuif c;
  ASSERT_TRUE(c.convCivil_juif("01/03/2024"));
  EXPECT_EQ(c.getReponse(), "21/06/5784");
  EXPECT_EQ(c.getJour(), "Vendredi");
  EXPECT_EQ(c.getDistrib(), "embolismique défective");
  ASSERT_TRUE(c.convJuif_civil("01/01/5784"));
  EXPECT_EQ(c.getReponse(), "16/09/2023");
  EXPECT_EQ(c.getJour(), "Samedi");
  EXPECT_FALSE(c.convCivil_juif("29/02/2023"));
  EXPECT_EQ(c.getReponse(), "");
  EXPECT_FALSE(c.convCivil_juif("n'importe"));
  EXPECT_TRUE(c.convCivil_juif("29/02/1504"));  // julien : 1504 est bissextile ici
  EXPECT_FALSE(c.convJuif_civil("01/14/5784"));
}

TEST(ConvJuif, FevrierEtDecalageJulien) {
  ConvJuif c;
  struct {
    int annee, fevrier, decalage;
  } lignes[] = {{1500, 29, -6}, {1580, 29, -6}, {1581, 28, -5}, {1582, 28, -5}, {1583, 28, 5},
                {1600, 29, 4},  {1700, 28, 6},  {1900, 28, 7},  {2000, 29, 7}};
  for (const auto& l : lignes) {
    c.SetCivil(1, 1, l.annee);
    c.bissextile();
    EXPECT_EQ(c.LongueurFevrier(), l.fevrier) << l.annee;
    EXPECT_EQ(c.DecalageJulien(), l.decalage) << l.annee;
  }
}

TEST(ConvJuif, PremierNissanParLeRaccourciDeNbMois) {
  ConvJuif c;
  // 5785, commune abondante : Roch Hachana jeudi (5), suivant mardi (3) ; le
  // 1er Nissan tombe le dimanche 30/03/2025, comme le calendrier.
  ASSERT_TRUE(c.convCivil_juif("30/03/2025"));
  EXPECT_EQ(c.getReponse(), "01/08/5785");
  EXPECT_EQ(c.JourRochHachana(), 5);
  EXPECT_EQ(c.JourRochHachanaSuivant(), 3);
  EXPECT_EQ(c.JourNissan(), 1);
  EXPECT_EQ(c.LongueurMois(2), 30);
  // 5784, embolismique défective : samedi (7) puis jeudi (5) ; le raccourci donne
  // lundi (2) quand le 1er Nissan réel, le 09/04/2024, est un mardi.
  ASSERT_TRUE(c.convCivil_juif("09/04/2024"));
  EXPECT_EQ(c.getReponse(), "01/08/5784");
  EXPECT_EQ(c.getJour(), "Mardi");
  EXPECT_EQ(c.JourNissan(), 2);
  EXPECT_EQ(c.LongueurMois(3), 29);
}

TEST(ConvJuif, CorrectionJulienneDe1582) {
  ConvJuif c;
  struct {
    int j, m, jAttendu, mAttendu;
  } lignes[] = {{26, 9, 26, 9}, {27, 9, 17, 9}, {15, 10, 5, 10}, {5, 10, 25, 9},
                // Voulu : le mois précédent compte toujours 30 jours, octobre compris.
                {5, 11, 25, 10}, {19, 12, 9, 12}, {20, 12, 20, 12}};
  for (const auto& l : lignes) {
    c.SetCivil(l.j, l.m, 1582);
    c.correctJulienGreg();
    EXPECT_EQ(c.JourCivil(), l.jAttendu) << l.j << "/" << l.m;
    EXPECT_EQ(c.MoisCivil(), l.mAttendu) << l.j << "/" << l.m;
  }
  // La même règle sert à la conversion : 1er novembre 1582 grégorien = 6 Hechvan 5343.
  ASSERT_TRUE(c.convJuif_civil("06/02/5343"));
  EXPECT_EQ(c.getReponse(), "21/10/1582");
}

}  // namespace
}  // namespace rqbase
