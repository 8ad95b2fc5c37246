#include "rqbase/util/liste_chaines.h"

#include <gtest/gtest.h>

namespace rqbase {
namespace {

std::vector<std::string> Lignes(const TStringList& l) { return l.Lignes(); }
using V = std::vector<std::string>;

TEST(ListeChaines, CommaTextProtegeCeQuIlFaut) {
  TStringList l;
  l.Add("Paris");
  l.Add("Saint Denis");
  l.Add("a,b");
  l.Add("dit \"le grand\"");
  l.Add("");
  EXPECT_EQ(l.CommaText(), "Paris,\"Saint Denis\",\"a,b\",\"dit \"\"le grand\"\"\",");
  TStringList relue;
  relue.SetCommaText(l.CommaText());
  // Le délimiteur final relit l'élément vide de la fin.
  EXPECT_EQ(Lignes(relue), Lignes(l));

  TStringList seul;
  seul.Add("");
  EXPECT_EQ(seul.CommaText(), "\"\"");
}

TEST(ListeChaines, LectureNonStricteCoupeAuxBlancs) {
  TStringList l;
  l.SetCommaText("  un deux ,trois,  \"qua tre\"  ,");
  EXPECT_EQ(Lignes(l), (V{"un", "deux", "trois", "qua tre", ""}));
  l.SetCommaText("");
  EXPECT_EQ(l.Count(), 0);
  l.SetCommaText("\"non fermé");
  EXPECT_EQ(Lignes(l), (V{"non fermé"}));
}

TEST(ListeChaines, DelimiteurStrict) {
  TStringList l;
  l.Delimiter = ';';
  l.StrictDelimiter = true;
  l.SetDelimitedText(" Le Mans ;Tours;");
  EXPECT_EQ(Lignes(l), (V{" Le Mans ", "Tours", ""}));
  EXPECT_EQ(l.DelimitedText(), " Le Mans ;Tours;");  // les blancs ne se protègent pas en strict
  l.StrictDelimiter = false;
  EXPECT_EQ(l.DelimitedText(), "\" Le Mans \";Tours;");
}

TEST(ListeChaines, TexteEtValeurs) {
  TStringList l;
  l.SetText("a\r\nb\nc\r\rd");
  EXPECT_EQ(Lignes(l), (V{"a", "b", "c", "", "d"}));
  EXPECT_EQ(l.Text(), "a\r\nb\r\nc\r\n\r\nd\r\n");
  l.Clear();
  l.SetValue("Pays", "France");
  l.SetValue("pays", "Belgique");  // la casse est ignorée par défaut
  EXPECT_EQ(l.Count(), 1);
  EXPECT_EQ(l.Value("PAYS"), "Belgique");
  EXPECT_EQ(l.IndexOf("PAYS=BELGIQUE"), 0);
  l.CaseSensitive = true;
  EXPECT_EQ(l.IndexOf("PAYS=BELGIQUE"), -1);
}

}  // namespace
}  // namespace rqbase
