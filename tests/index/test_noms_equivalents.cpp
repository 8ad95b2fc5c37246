// Les équivalences de noms lues de leur fichier, et les réglages de l'écran de recherche.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "dossier_essai.h"
#include "rqbase/index/noms_equivalents.h"
#include "rqbase/index/param_recherche.h"
#include "rqbase/index/recherche_index.h"
#include "rqbase/platform/fichier.h"

namespace rqbase {
namespace {

using TGenre = TTabNomEquiv::TGenre;
using TNoms = std::vector<std::string>;

// Un fichier tapé à la main : commentaires, fins de ligne mêlées, graphies accentuées et à
// particule, groupes qui se recoupent, lignes à passer (une graphie, démesurée, binaire).
TEST(NomsEquivalents, FichierTapeALaMain) {
  essai::TDossierTemp temp;
  const std::string noms = temp.Racine + "/e.neq";
  essai::Ecrit(noms, std::string("# noms\r\nDupont; Dupond ;DUPONS\n\nde Lafont;Lafond\r\n") +
                         "Dupond;Dupont;Dupontel\n" + "seul;seul\n" + std::string(5000, 'A') + ";B\n" +
                         std::string("\x01\xff;\0;\n", 6) + "Émile;Emille");
  TTabNomEquiv t(noms, temp.Racine + "/absent.preq");
  EXPECT_EQ(t.Groupes(TGenre::Noms).size(), 4u);
  EXPECT_EQ(t.Groupes(TGenre::Noms)[0], (TNoms{"Dupont", "Dupond", "DUPONS"}));
  EXPECT_EQ(t.Groupes(TGenre::Prenoms).size(), 0u);
  EXPECT_EQ(t.GetNomEquiv("dupond"), (TNoms{"DUPOND", "DUPONT", "DUPONS", "DUPONTEL"}));
  EXPECT_EQ(t.GetNomEquiv("Dupontel"), (TNoms{"DUPONTEL", "DUPOND", "DUPONT"}));
  EXPECT_EQ(t.GetNomEquiv("LAFOND"), (TNoms{"LAFOND", "LAFONT"}));  // particule ôtée
  EXPECT_EQ(t.GetNomEquiv("emile"), (TNoms{"EMILE", "EMILLE"}));     // accent plié
  EXPECT_EQ(t.GetNomEquiv("Martin"), TNoms{"MARTIN"});
  EXPECT_EQ(t.GetNomEquiv("Dupont", TGenre::Prenoms), TNoms{"DUPONT"});
  // "seul;seul", la ligne démesurée et la ligne binaire sont passées, chacune notée.
  ASSERT_EQ(t.Avertissements.size(), 3u);
  EXPECT_NE(t.Avertissements[0].find("ligne 6 : moins de deux graphies"), std::string::npos);
  EXPECT_NE(t.Avertissements[1].find("ligne 7 : ligne trop longue"), std::string::npos);

  // Un groupe ajouté s'écrit à la suite du texte lu, commentaires et lignes passées gardés ;
  // une graphie que sa forme rendrait autre à une seconde lecture se garde telle que tapée.
  const std::string avant = essai::Contenu(noms);
  ASSERT_TRUE(t.AjouteGroupe({"Du C d", "Lafon"}, TGenre::Noms));
  EXPECT_FALSE(t.AjouteGroupe({"#A", "B"}, TGenre::Noms));
  EXPECT_FALSE(t.AjouteGroupe({"A\nB", "C"}, TGenre::Noms));
  ASSERT_TRUE(t.Sauvegarde(TGenre::Noms));
  EXPECT_EQ(essai::Contenu(noms), avant + "\r\nDu C d;Lafon\r\n");
  EXPECT_EQ(TTabNomEquiv(noms, "").Groupes(TGenre::Noms), t.Groupes(TGenre::Noms));

  // Ajout puis sauvegarde : relu, le même groupe ; un groupe d'une seule graphie est refusé.
  TTabNomEquiv p("", temp.Racine + "/e.preq");
  EXPECT_FALSE(p.AjouteGroupe({"Jean", " jean "}, TGenre::Prenoms));
  ASSERT_TRUE(p.AjouteGroupe({"Jean", "Jehan", "Johan"}, TGenre::Prenoms));
  ASSERT_TRUE(p.Sauvegarde(TGenre::Prenoms));
  EXPECT_FALSE(p.Sauvegarde(TGenre::Noms));  // pas de fichier des noms
  EXPECT_EQ(essai::Contenu(temp.Racine + "/e.preq"), "Jean;Jehan;Johan\r\n");  // telles que tapées
  EXPECT_EQ(TTabNomEquiv("", temp.Racine + "/e.preq").GetNomEquiv("Johan", TGenre::Prenoms),
            (TNoms{"JOHAN", "JEAN", "JEHAN"}));
}

// Ni lien symbolique ni dossier à la place du fichier : rien n'est lu ni remplacé.
TEST(NomsEquivalents, NiLienNiDossier) {
  essai::TDossierTemp temp;
  const std::string vrai = temp.Racine + "/vrai.txt";
  essai::Ecrit(vrai, "A;B\n");
  ASSERT_EQ(::symlink(vrai.c_str(), (temp.Racine + "/lien.neq").c_str()), 0);
  std::filesystem::create_directory(temp.Racine + "/dossier.preq");
  TTabNomEquiv t(temp.Racine + "/lien.neq", temp.Racine + "/dossier.preq");
  EXPECT_TRUE(t.Groupes(TGenre::Noms).empty());
  EXPECT_TRUE(t.Groupes(TGenre::Prenoms).empty());
  ASSERT_TRUE(t.AjouteGroupe({"Claude", "Clode"}, TGenre::Noms));
  EXPECT_FALSE(t.Sauvegarde(TGenre::Noms));
  EXPECT_EQ(essai::Contenu(vrai), "A;B\n");
}

// Un fichier là mais illisible n'est jamais remplacé par les seuls groupes ajoutés ; un groupe
// dont la ligne serait trop longue pour être relue est refusé.
TEST(NomsEquivalents, IllisibleJamaisRemplaceLigneTropLongueRefusee) {
  essai::TDossierTemp temp;
  const std::string noms = temp.Racine + "/e.neq";
  essai::Ecrit(noms, "# mes groupes\nDupont;Dupond\n");
  TFichierBrut::Pannes().EchoueLectureApres(0, ".neq");
  TTabNomEquiv t(noms, "");
  TFichierBrut::Pannes().Raz();
  EXPECT_TRUE(t.Groupes(TGenre::Noms).empty());
  ASSERT_EQ(t.Avertissements.size(), 1u);
  ASSERT_TRUE(t.AjouteGroupe({"Leroy", "Leroi"}, TGenre::Noms));
  EXPECT_FALSE(t.Sauvegarde(TGenre::Noms));
  EXPECT_EQ(essai::Contenu(noms), "# mes groupes\nDupont;Dupond\n");

  TTabNomEquiv u(noms, "");
  std::vector<std::string> groupe;
  for (int i = 0; i < 600; ++i) groupe.push_back("NOM" + std::to_string(1000 + i));
  EXPECT_FALSE(u.AjouteGroupe(groupe, TGenre::Noms));
  groupe.resize(400);  // 400 × 7 + 399 : sous la limite
  EXPECT_TRUE(u.AjouteGroupe(groupe, TGenre::Noms));
  ASSERT_TRUE(u.Sauvegarde(TGenre::Noms));
  EXPECT_EQ(TTabNomEquiv(noms, "").Groupes(TGenre::Noms), u.Groupes(TGenre::Noms));
}

TEST(ParamRecherche, SectionPersonneModif) {
  essai::TDossierTemp temp;
  ::setenv("XDG_DATA_HOME", temp.Racine.c_str(), 1);
  TSearchPersEdit p;
  p.Periode = 9;
  TGestEltIndex::GetParamSearchPersEdit(&p);  // pas de fichier : les valeurs par défaut
  EXPECT_FALSE(p.Activate);
  EXPECT_EQ(p.Periode, 0);
  essai::Ecrit(FichierParamRecherche(),
               "[Autre]\nActivate=1\n[Personne_Modif]\nActivate=1\nPers_Add=Oui\nPers_Edit=non\n"
               "Periode=25\nLast_search=Dupont Jean\n");
  TGestEltIndex::GetParamSearchPersEdit(&p);
  EXPECT_TRUE(p.Activate);
  EXPECT_TRUE(p.PersAdd);
  EXPECT_FALSE(p.PersEdit);
  EXPECT_EQ(p.Periode, 25);
  EXPECT_EQ(p.LastSearch, "Dupont Jean");
  essai::Ecrit(FichierParamRecherche(), "[Personne_Modif]\nPeriode=vingt\n[[mal formé\n");
  TGestEltIndex::GetParamSearchPersEdit(&p);
  EXPECT_EQ(p.Periode, 0);
  EXPECT_EQ(p.LastSearch, "");
  TGestEltIndex::GetParamSearchPersEdit(nullptr);
  ::unsetenv("XDG_DATA_HOME");
}

}  // namespace
}  // namespace rqbase
