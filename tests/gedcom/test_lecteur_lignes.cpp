// Lecteur de lignes GEDCOM : codages, fins de ligne, suites, niveaux, lignes illisibles.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "rqbase/gedcom/arbre.h"
#include "rqbase/gedcom/codages.h"
#include "rqbase/gedcom/lecteur_lignes.h"

namespace rqbase {
namespace {

// Les lignes lues, « niveau|ref|balise|valeur » chacune, et le rapport.
struct TLu {
  std::vector<std::string> Lignes;
  TRapportImport Rapport;
  std::string Refus;
};

TLu Lit(const std::string& octets) {
  TLu r;
  const TLignesGedcom l = LitLignesGedcom(octets, r.Rapport, r.Refus);
  for (const TLigneGedcom& x : l.Lignes)
    r.Lignes.push_back(std::to_string(x.Niveau) + "|" + std::string(l.Xref(x)) + "|" + std::string(l.Tag(x)) + "|" +
                       std::string(l.Valeur(x)));
  return r;
}

std::string Utf16(const std::string& ascii, bool gros) {
  std::string s = gros ? "\xFE\xFF" : "\xFF\xFE";
  for (char c : ascii) {
    if (gros) s += '\0';
    s += c;
    if (!gros) s += '\0';
  }
  return s;
}

TEST(LecteurLignes, ToutesLesFinsDeLigneDonnentLesMemesLignes) {
  const std::vector<std::string> attendu = {"0||HEAD|", "1||CHAR|ASCII", "0|I1|INDI|", "1||NAME|Jean /Dupont/"};
  for (const char* fin : {"\n", "\r", "\r\n", "\n\r"}) {
    const std::string f = std::string("0 HEAD") + fin + "1 CHAR ASCII" + fin + "0 @I1@ INDI" + fin + "1 NAME Jean /Dupont/" + fin;
    const TLu r = Lit(f);
    EXPECT_EQ(r.Lignes, attendu) << "fin de ligne " << int(fin[0]);
    EXPECT_TRUE(r.Rapport.Avertissements.empty());
  }
  // Les lignes vides et les blancs de tête ne comptent pas, mais les numéros suivent le fichier.
  TRapportImport rapport;
  std::string refus;
  const TLignesGedcom l = LitLignesGedcom("0 HEAD\r\n\r\n   \t1 CHAR ANSI\r\n", rapport, refus);
  ASSERT_EQ(l.Lignes.size(), 2u);
  EXPECT_EQ(l.Lignes[1].Numero, 3u);
  EXPECT_EQ(l.Tag(l.Lignes[1]), "CHAR");
}

TEST(LecteurLignes, SuitesEtArobases) {
  const TLu r = Lit(
      "0 HEAD\n0 @N1@ NOTE Premier\n1 CONC  morceau\n1 CONT seconde ligne\n1 CONT\n1 CONC fin\n"
      "0 @I1@ INDI\n1 NOTE adresse jean@@exemple.fr\n1 FAMS @F1@\n");
  ASSERT_EQ(r.Lignes.size(), 5u);
  EXPECT_EQ(r.Lignes[1], "0|N1|NOTE|Premier morceau\r\nseconde ligne\r\nfin");
  EXPECT_EQ(r.Lignes[3], "1||NOTE|adresse jean@exemple.fr");
  EXPECT_EQ(r.Lignes[4], "1||FAMS|@F1@");
  // « @@ » se lit « @ » aussi dans les suites ; en GEDCOM 7, seulement en tête de ligne.
  const TLu suites = Lit("0 HEAD\n0 @I1@ INDI\n1 NOTE a@@b\n2 CONC c@@d\n2 CONT @@e@@f\n");
  EXPECT_EQ(suites.Lignes.back(), "1||NOTE|a@bc@d\r\n@e@f");
  const TLu sept = Lit("0 HEAD\n1 GEDC\n2 VERS 7.0\n0 @I1@ INDI\n1 NOTE @@a@@b\n2 CONT @@e@@f\n");
  EXPECT_EQ(sept.Lignes.back(), "1||NOTE|@a@@b\r\n@e@@f");
  // Une suite sans ligne à continuer est dite et laissée.
  const TLu orpheline = Lit("0 CONC perdu\n0 HEAD\n");
  ASSERT_EQ(orpheline.Rapport.Avertissements.size(), 1u);
  EXPECT_EQ(orpheline.Rapport.Avertissements[0].Raison, "suite (CONC/CONT) sans ligne à continuer");
  EXPECT_EQ(orpheline.Lignes, std::vector<std::string>{"0||HEAD|"});
}

TEST(LecteurLignes, SautsDeNiveauEtLignesIllisibles) {
  const TLu r = Lit("0 HEAD\n3 SOUR X\nbonjour\n0 @I1 INDI\n1\n0 TRLR\n");
  EXPECT_EQ(r.Lignes, (std::vector<std::string>{"0||HEAD|", "1||SOUR|X", "0||TRLR|"}));
  ASSERT_EQ(r.Rapport.Avertissements.size(), 4u);
  EXPECT_EQ(r.Rapport.Avertissements[0].Ligne, 2);
  EXPECT_EQ(r.Rapport.Avertissements[0].Raison, "saut de niveau (3 après 0) : ligne lue au niveau 1");
  EXPECT_EQ(r.Rapport.Avertissements[1].Raison, "ligne illisible : elle ne commence pas par un niveau");
  EXPECT_EQ(r.Rapport.Avertissements[2].Raison, "référence illisible");
  EXPECT_EQ(r.Rapport.Avertissements[3].Raison, "ligne sans balise");
  // Les sous-lignes d'une tête illisible partent avec elle, jusqu'à la ligne suivante de même
  // niveau : elles ne vont pas à l'enregistrement d'avant.
  const TLu tete = Lit(
      "0 @I1@ INDI\n1 NAME Un /A/\n0 @I2 INDI\n1 NAME Deux /B/\n1 BIRT\n2 DATE 1900\n2 CONC x\n"
      "0 @I3@ INDI\n1 @X BIRT\n2 DATE 1901\n1 DEAT\n");
  EXPECT_EQ(tete.Lignes, (std::vector<std::string>{"0|I1|INDI|", "1||NAME|Un /A/", "0|I3|INDI|", "1||DEAT|"}));
  ASSERT_EQ(tete.Rapport.Avertissements.size(), 7u);
  const std::vector<std::pair<long, bool>> attendus = {{3, false}, {4, true}, {5, true}, {6, true},
                                                       {7, true},  {9, false}, {10, true}};
  for (size_t k = 0; k < attendus.size(); ++k) {
    EXPECT_EQ(tete.Rapport.Avertissements[k].Ligne, attendus[k].first);
    EXPECT_EQ(tete.Rapport.Avertissements[k].Raison == "ligne sautée : sa ligne de tête est illisible", attendus[k].second) << k;
  }
  // Rien de GEDCOM : refus, sans ligne.
  const TLu vide = Lit(std::string("\x7f" "ELF\x02\x01\x01\0\0\0", 10));
  EXPECT_TRUE(vide.Lignes.empty());
  EXPECT_THAT(vide.Refus, testing::HasSubstr("n'est pas un fichier GEDCOM"));
  EXPECT_FALSE(Lit("").Refus.empty());
}

TEST(LecteurLignes, CodagesParMarqueEtParEnTete) {
  // UTF-8 avec marque : « é » et « € » en Windows-1252.
  TLu r = Lit("\xEF\xBB\xBF" "0 HEAD\n1 CHAR UTF-8\n0 @I1@ INDI\n1 NAME Ren\xC3\xA9 /L\xE2\x82\xAC/\n");
  EXPECT_EQ(r.Rapport.Codage, "UTF-8");
  EXPECT_EQ(r.Lignes.back(), "1||NAME|René /L€/");
  // UTF-16 des deux boutismes.
  for (bool gros : {false, true}) {
    r = Lit(Utf16("0 HEAD\r\n1 CHAR UNICODE\r\n0 TRLR\r\n", gros));
    EXPECT_EQ(r.Lignes, (std::vector<std::string>{"0||HEAD|", "1||CHAR|UNICODE", "0||TRLR|"}));
    EXPECT_EQ(r.Rapport.Codage, gros ? "UTF-16BE" : "UTF-16LE");
    EXPECT_TRUE(r.Rapport.Avertissements.empty());
  }
  // ANSEL : diacritique avant la lettre ; un caractère sans équivalent est dit.
  r = Lit("0 HEAD\n1 CHAR ANSEL\n1 NOTE \xE2" "e\xF0" "c\xE8" "u \xA6uvre \xA1\n");
  EXPECT_EQ(r.Lignes.back(), "1||NOTE|éçü Œuvre ?");
  ASSERT_EQ(r.Rapport.Avertissements.size(), 1u);
  EXPECT_EQ(r.Rapport.Avertissements[0].Ligne, 3);
  // ANSI : les octets tels quels.
  r = Lit("0 HEAD\n1 CHAR ANSI\n1 NOTE \xE9t\xE9\n");
  EXPECT_EQ(r.Lignes.back(), "1||NOTE|été");
  // La marque l'emporte sur un CHAR contraire, et le désaccord est dit.
  r = Lit("\xEF\xBB\xBF" "0 HEAD\n1 CHAR ANSEL\n1 NOTE \xC3\xA9\n");
  EXPECT_EQ(r.Lignes.back(), "1||NOTE|é");
  ASSERT_EQ(r.Rapport.Avertissements.size(), 1u);
  EXPECT_THAT(r.Rapport.Avertissements[0].Raison, testing::HasSubstr("la marque l'emporte"));
  // Un codage inconnu : dit, et lu en UTF-8 s'il en est, en Windows-1252 sinon.
  r = Lit("0 HEAD\n1 CHAR EBCDIC\n1 NOTE \xE9\n");
  EXPECT_EQ(r.Rapport.Codage, "ANSI");
  EXPECT_EQ(r.Lignes.back(), "1||NOTE|é");
  EXPECT_THAT(r.Rapport.Avertissements[0].Raison, testing::HasSubstr("codage inconnu"));
}

TEST(LecteurLignes, Utf16PairesDeSubstitutionEtOctetImpair) {
  // U+1F333 (hors du plan de base) puis une moitié de paire isolée, puis un octet de trop.
  const std::string o("\x3C\xD8\x33\xDF" "A\0" "\x00\xD8" "B\0" "C", 11);
  EXPECT_EQ(Utf16VersUtf8(o, false), "\xF0\x9F\x8C\xB3" "A\xEF\xBF\xBD" "B");
}

TEST(ArbreGedcom, EnfantsReferencesEtDoubles) {
  TRapportImport r;
  std::string refus;
  const TLignesGedcom l = LitLignesGedcom(
      "0 HEAD\n0 @I1@ INDI\n1 NAME A\n2 GIVN x\n1 SEX M\n0 @I1@ INDI\n1 NAME B\n0 @F1@ FAM\n1 HUSB @I1@\n0 TRLR\n", r,
      refus);
  const TArbreGedcom a(l, r);
  ASSERT_EQ(a.Enregistrements().size(), 5u);
  const uint32_t i1 = a.Enregistrements()[1];
  EXPECT_EQ(a.Cherche("INDI", "I1"), int64_t(i1));  // le premier garde la référence
  EXPECT_EQ(a.Cherche("FAM", "I1"), -1);
  EXPECT_EQ(a.ValeurEnfant(i1, "SEX"), "M");
  EXPECT_EQ(a.Fin(i1), i1 + 4);
  std::vector<std::string> enfants;
  a.Enfants(i1, [&](uint32_t j) { enfants.emplace_back(a.Tag(j)); });
  EXPECT_EQ(enfants, (std::vector<std::string>{"NAME", "SEX"}));
  ASSERT_EQ(r.Avertissements.size(), 1u);
  EXPECT_EQ(r.Avertissements[0].Ligne, 6);
  EXPECT_EQ(TArbreGedcom::Pointeur("@I12@"), "I12");
  EXPECT_EQ(TArbreGedcom::Pointeur("@#DJULIAN@"), "");
  EXPECT_EQ(TArbreGedcom::Pointeur("@ I1@"), "");
}

}  // namespace
}  // namespace rqbase
