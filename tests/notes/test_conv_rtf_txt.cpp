// RTF vers texte : le décapeur TConvRtfTxt (ses manies comprises) et notre lecteur RTF.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "rqbase/notes/conv_rtf_txt.h"
#include "rqbase/notes/lecteur_rtf.h"

namespace rqbase {
namespace {

std::string Decape(const std::string& rtf, bool sauts = true) { return TConvRtfTxt(rtf).TraitementRtfTxt(sauts); }

struct TCas {
  const char* Rtf;
  const char* AvecSauts;
  const char* SansSauts;
};

TEST(TConvRtfTxt, TraitementSurVecteursFixes) {
  const TCas cas[] = {
      {"", "", ""},
      {"Caf\\'e9 noir", "Café noir", "Café noir"},
      {"a\\'00b", "ab", "ab"},
      {"a\\par b", "a \n b", "a  b"},
      {"un\\line deux\\page trois", "un \n deux \n trois", "un  deux  trois"},
      {"a\\pard b", "a b", "a  b"},
      // Un mot qui commence par « par » compte pour « par ».
      {"a\\partie b", "a \n b", "a  b"},
      // La table des polices part en entier, avec les noms ; les accolades à la fin.
      {"{\\rtf1\\ansi{\\fonttbl{\\f0\\fswiss Arial;}{\\f1 Times;}}\\f0 Bonjour}", "Bonjour", "Bonjour"},
      // Le point collé au mot part avec lui ; le mot court jusqu'au blanc suivant.
      {"fin\\b. Suite", "fin Suite", "fin Suite"},
      {"Un \\b.gras\\b0 mot", "Un  mot", "Un  mot"},
      // Un bloc fermé part ; un bloc qui court au bout ne perd que son mot.
      {"Avant {\\info Auteur} et {\\header reste", "Avant et reste", "Avant et reste"},
      {"{\\*\\generator Msftedit 5.41;}Texte", "Texte", "Texte"},
      {"a{\\pict\\pngblip 89504e47}b{\\pict ff}c", "abc", "abc"},
      // Les fins de ligne du fichier RTF, même imbriquées, ne comptent pas.
      {"a\r\nb\r\r\n\nc", "abc", "abc"},
      // Les accolades échappées perdent leur barre, puis disparaissent comme les autres.
      {"a\\{b\\}c", "abc", "abc"},
      // Échappements coupés au bout du texte.
      {"ab\\'e", "ab", "ab"},
      {"ab\\'", "ab", "ab"},
      {"ab\\'zz cd", "ab cd", "ab cd"},
      // Le premier caractère et le dernier ne sont jamais lus comme commande.
      {"\\par x", "\\par x", "\\par x"},
      {"ab\\", "ab\\", "ab\\"},
      // Un blanc devant une fin de ligne CR LF (venue d'un \'0d\'0a) part.
      {"a \\'0d\\'0ab", "a\r\nb", "a b"},
  };
  for (const auto& c : cas) {
    EXPECT_EQ(Decape(c.Rtf, true), c.AvecSauts) << c.Rtf;
    EXPECT_EQ(Decape(c.Rtf, false), c.SansSauts) << c.Rtf;
  }
}

TEST(TConvRtfTxt, MethodesSurLeTexteDeTravail) {
  TConvRtfTxt c("\\pard\\par\\parx\\pa\\stylesheet\\footnote");
  ASSERT_EQ(c.Commandes().Count(), 14);
  EXPECT_EQ(c.Commandes()[0], "line");
  EXPECT_EQ(c.Commandes()[13], "stylesheet");
  EXPECT_EQ(c.EstCommandeConnue(1), 2);    // pard avant par
  EXPECT_EQ(c.EstCommandeConnue(6), 3);
  EXPECT_EQ(c.EstCommandeConnue(10), 3);   // parx
  EXPECT_EQ(c.EstCommandeConnue(15), -1);  // pa
  EXPECT_EQ(c.EstCommandeConnue(18), 14);  // dix caractères tout juste
  EXPECT_EQ(c.EstCommandeConnue(29), -1);  // footnote n'est pas footer
  EXPECT_EQ(c.EstCommandeConnue(0), -1);
  EXPECT_EQ(c.EstCommandeConnue(999), -1);

  TConvRtfTxt t("x\\bold{y} d\\{z");
  EXPECT_FALSE(t.CaracFinCmde(1));
  EXPECT_TRUE(t.CaracFinCmde(2));
  EXPECT_TRUE(t.CaracFinCmde(7));
  EXPECT_TRUE(t.CaracFinCmde(9));
  EXPECT_TRUE(t.CaracFinCmde(10));
  EXPECT_FALSE(t.CaracFinCmde(0));
  EXPECT_FALSE(t.CaracFinCmde(99));
  EXPECT_EQ(t.ExtraireCommande(2), "bold");
  EXPECT_EQ(t.ExtraireCommande(7), "{ ou }");
  EXPECT_EQ(t.ExtraireCommande(9), "{ ou }");
  EXPECT_EQ(t.ExtraireCommande(1), "");
  EXPECT_EQ(t.ExtraireCommande(13), "");  // accolade échappée
  EXPECT_EQ(t.ExtraireCommande(99), "");

  TConvRtfTxt m("a\\b. (b) c");
  m.SupprimeCmde(2);
  EXPECT_EQ(m.Texte(), "a (b) c");
  TConvRtfTxt p("a\\i.(x) c");
  p.SupprimeCmde(2);
  EXPECT_EQ(p.Texte(), "a c");

  TConvRtfTxt b("x{\\info{a}b}y");
  EXPECT_EQ(b.SupprimeBlocCmde(3), 12);
  EXPECT_EQ(b.Texte(), "x{}y");
  TConvRtfTxt ouvert("x{\\info{a}b");
  EXPECT_EQ(ouvert.SupprimeBlocCmde(3), 0);
  EXPECT_EQ(ouvert.Texte(), "x{{a}b");
  EXPECT_EQ(ouvert.SupprimeBlocCmde(1), 0);  // pas une barre : rien
  EXPECT_EQ(ouvert.Texte(), "x{{a}b");

  // L'instance de l'unité existe et reste vide.
  EXPECT_EQ(ConvRtfTxt().Texte(), "");
}

// Des textes énormes et mal formés passent vite : le décapage reste linéaire.
TEST(TConvRtfTxt, TextesHostilesSansLenteur) {
  const auto debut = std::chrono::steady_clock::now();
  std::string ouvrants(300000, '{');
  EXPECT_EQ(Decape(ouvrants + "\\fonttbl x"), "x");
  std::string blocs;
  for (int i = 0; i < 100000; ++i) blocs += "{\\info a";
  // Le contenu des blocs ouverts reste ; chaque « { » suivi d'un blanc part avec lui.
  EXPECT_EQ(Decape(blocs), std::string(100000, 'a'));
  std::string fermes;
  for (int i = 0; i < 100000; ++i) fermes += "x{\\info{{a}}}\\par \\'e9 ";
  EXPECT_EQ(Decape(fermes, false).substr(0, 6), "x é x ");  // « {» puis blanc : partis ensemble
  std::string commandes(500000, 'a');
  for (size_t i = 1; i < commandes.size(); i += 7) commandes[i] = '\\';
  (void)Decape(commandes);
  EXPECT_LT(std::chrono::steady_clock::now() - debut, std::chrono::seconds(20));
}

TEST(ConvertirRtfTxt, LecteurSurVecteursFixes) {
  const TCas cas[] = {
      {"{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red255\\green0\\blue0;}\\f0\\fs20 Bonjour "
       "\\b le\\b0  monde.\\par Deuxi\\'e8me ligne\\line suite\\par}",
       "Bonjour le monde.\r\nDeuxième ligne\r\nsuite", "Bonjour le monde. Deuxième ligne suite"},
      {"{\\rtf1 Prix : 5\\u8364? net\\par\\uc0\\u945 x}", "Prix : 5€ net\r\n?x", "Prix : 5€ net ?x"},
      {"{\\rtf1 \\u-3913?}", "?", "?"},
      {"{\\rtf1{\\*\\bkmkstart a}Texte{\\*\\inconnu zzz}}", "Texte", "Texte"},
      {"{\\rtf1{\\info{\\author Moi}}{\\header en-tête}Corps{\\footer pied}}", "Corps", "Corps"},
      {"{\\rtf1 a\\\\b\\{c\\}d\\~e\\-f\\_g}", "a\\b{c}d\xA0" "ef-g", "a\\b{c}d\xA0" "ef-g"},
      {"{\\rtf1 col1\\tab col2\\cell\\row fin}", "col1\tcol2\t\r\nfin", "col1\tcol2\t fin"},
      {"{\\rtf1 a\\bin3 xyzb}", "ab", "ab"},
      {"{\\rtf1 a\\bin999 xy", "a", "a"},
      {"{\\rtf1 a\\'e", "a", "a"},
      {"{\\rtf1 a\\", "a", "a"},
      {"{\\rtf1 a}}}b{{c", "abc", "abc"},
      {"{\\rtf1 l\\rquote an\\emdash fin}", "l\x92" "an\x97" "fin", "l\x92" "an\x97" "fin"},
      {"{\\rtf1 ligne\r\ncoupée}", "lignecoupée", "lignecoupée"},
      // Texte ordinaire : rogné, fins de ligne en CR LF.
      {"  ligne 1\nligne 2\r\n", "ligne 1\r\nligne 2", "ligne 1 ligne 2"},
      {"", "", ""},
  };
  for (const auto& c : cas) {
    EXPECT_EQ(ConvertirRtfTxt(c.Rtf, true), c.AvecSauts) << c.Rtf;
    EXPECT_EQ(ConvertirRtfTxt(c.Rtf, false), c.SansSauts) << c.Rtf;
  }
  // Groupes imbriqués sans fin : rien ne casse, le texte reste.
  std::string profond = "{\\rtf1 ";
  profond += std::string(1000000, '{') + "mot" + std::string(10, '}') + "\\par suite";
  EXPECT_EQ(ConvertirRtfTxt(profond), "mot\r\nsuite");
}

}  // namespace
}  // namespace rqbase
