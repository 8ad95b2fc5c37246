// La mise en forme d'un texte affiché : styles de texte, de booléen, de liste, et casse.
#include <gtest/gtest.h>

#include "rqbase/fields/rendu_texte.h"

namespace rqbase {
namespace {

std::string Style(const std::string& s, int style) { return AjusteStyleTexte(s, TChampBase::TStyle{style}); }

TEST(RenduTexte, StylesDeTexteDeBooleenEtDeListe) {
  EXPECT_EQ(Style("Lyon", 60), "Lyon");
  EXPECT_EQ(Style("Lyon", 62), "Ly");
  EXPECT_EQ(Style("Lyon", 65), "Lyon");
  EXPECT_EQ(Style("Naissance", 66), "Nai.");
  EXPECT_EQ(Style("Naissance", 67), "Naissa.");  // 6 : coupe devant n, une consonne
  EXPECT_EQ(Style("Oui", 83), "Vrai");
  EXPECT_EQ(Style("n", 81), "N");
  EXPECT_EQ(Style("Non", 84), "?");
  EXPECT_EQ(Style("O", 82), "o");
  EXPECT_EQ(Style("", 85), "Indeterminer");
  EXPECT_EQ(Style("peut-être", 86), "?");
  EXPECT_EQ(Style("Paris, Lyon", 183), "Pa., Lyo.");
  EXPECT_EQ(AbregeChpsSimple("Paris; Lyon", TChampBase::TStyle{183}), "Pa.; Lyo.");
  EXPECT_EQ(Style("texte", 500), "texte");  // style que le rendu de texte ne tient pas
}

TEST(RenduTexte, Casses) {
  EXPECT_EQ(AjusteCasseTexte("élise", 0), "ÉLISE");
  EXPECT_EQ(AjusteCasseTexte("ÉLISE", 1), "Élise");
  EXPECT_EQ(AjusteCasseTexte("élise", 2), "élise");
  EXPECT_EQ(AjusteCasseTexte("élise", 3), "ELISE");
}

}  // namespace
}  // namespace rqbase
