// Import et export GEDCOM dans un vrai dossier : la famille d'exemple, l'aller-retour, les
// fichiers abîmés, les limites des tables de liens, les fichiers d'autres programmes.
#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/gedcom/export_gedcom.h"
#include "rqbase/gedcom/import_gedcom.h"
#include "rqbase/index/index_personnes.h"
#include "rqbase/notes/note.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/places/gestduplicat.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_evens.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

using testing::HasSubstr;

std::string Donnees(const std::string& nom) {
  std::ifstream f(std::string(RQ_DONNEES_GEDCOM) + "/" + nom, std::ios::binary);
  EXPECT_TRUE(f.good()) << nom;
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

class ImportGedcomTest : public testing::Test {
 protected:
  void SetUp() override { InstalleDialogue(&Dialogue_); }
  void TearDown() override { InstalleDialogue(nullptr); }
  std::unique_ptr<TGestFichier> Cree(const std::string& nom = "Essai") {
    auto g = std::make_unique<TGestFichier>(Temp.Prs(nom), true);
    EXPECT_FALSE(g->EnErreur());
    return g;
  }
  TRapportImport Importe(TGestFichier& g, const std::string& octets) {
    TRapportImport r = ImporteGedcom(g, octets);
    EXPECT_FALSE(g.EnErreur());
    return r;
  }
  // Les raisons du rapport, « ligne:raison ».
  static std::vector<std::string> Raisons(const TRapportImport& r) {
    std::vector<std::string> v;
    for (const auto& a : r.Avertissements) v.push_back(std::to_string(a.Ligne) + ":" + a.Raison);
    return v;
  }
  // Tout ce qu'un dossier tient d'une personne, en une ligne par fait.
  static std::string Decrit(TGestFichier& g, long no) {
    std::ostringstream s;
    TPerson p(g.FicPersons(), no, true);
    p.ChargeListes();
    s << p.Enreg.Nom << "|" << p.Enreg.Prenoms << "|" << int(p.Enreg.PrenomUsuel) << "|" << p.Enreg.Sexe << "|"
      << p.Enreg.Pere.No << "," << p.Enreg.Mere.No << "|";
    for (const auto& c : p.Enreg.Conjoints)
      if (c.No) s << c.No << " ";
    s << "|";
    for (const auto& e : p.Enreg.Enfants)
      if (e.No) s << e.No << " ";
    s << "\n";
    TModuleBDD* bdd = g.ModuleBDD();
    for (const TEvenementTV& ev : *p.Evens()) {
      TEvenement::TEnreg e = ev.Enreg;
      std::string ville, region, pays;
      if (e.Lieu > 0) {
        TFicheDupli f(g.FicLie(), e.Lieu, true);
        f.Elt.GetVilleRegionPays(ville, region, pays);
        ville += "/" + std::string(f.Elt.Code) + "/" + region + "/" + pays;
      }
      s << "  " << e.Libelle << " " << e.Date.ExportInString() << " " << ville << " [" << e.LieuDit << "] ["
        << e.Donnee << "] " << e.NoPersA << "+" << e.NoPersB;
      bdd->ChargerSourceOfEven(&e);
      for (int i = 0; i < kNbSourcesEven && e.Sources[i]; ++i) s << " source:" << TSource(bdd, e.Sources[i]).Enreg.Descriptif;
      bdd->ChargerPersAssocieeOfEven(&e);
      for (const auto& pa : e.PersAssociees)
        if (!pa.Vide()) s << " citée:" << pa.Lien.No;
      if (e.Note > 0) s << " note:" << TNote(g.FicNotes(), e.Note).RecupNoteTxt("");
      s << "\n";
    }
    for (const TChpsSimpleTV& c : *p.Chps()) s << "  " << c.Enreg.Libelle << " [" << c.Enreg.Donnee << "]\n";
    if (p.Enreg.Note > 0) s << "  note:" << TNote(g.FicNotes(), p.Enreg.Note).RecupNoteTxt("") << "\n";
    return s.str();
  }
  static std::string DecritTout(TGestFichier& g) {
    std::string s;
    for (long no = 1; no <= g.FicPersons()->NbPersEffective(); ++no) s += std::to_string(no) + ": " + Decrit(g, no);
    return s;
  }
  // Aucun lien à sens unique : la réparation ne trouverait rien à faire.
  static void LiensSymetriques(TGestFichier& g) {
    for (long no = 1; no <= g.FicPersons()->NbPersEffective(); ++no) {
      TPerson p(g.FicPersons(), no);
      EXPECT_FALSE(p.VerifLienSysmetrique()) << "personne " << no;
    }
  }

  // Les lignes de l'index des noms, « personne nom prénom min-max » dans l'ordre des personnes.
  static std::string LignesIndex(TGestFichier& g) {
    std::string s;
    SQLite::Statement q(g.ModuleBDD()->Base(),
                        "SELECT NoPers, Nom, Prenom, AnneeMin, AnneeMax FROM IndexNomPrenoms ORDER BY NoPers, ID");
    while (q.executeStep())
      s += q.getColumn(0).getString() + " " + q.getColumn(1).getString() + " " + q.getColumn(2).getString() + " " +
           q.getColumn(3).getString() + "-" + q.getColumn(4).getString() + "\n";
    return s;
  }

  // La mémoire de l'index, dans son ordre : « nom prénom personne min-max ».
  static std::vector<std::string> MemoireIndex(TGestFichier& g) {
    std::vector<std::string> r;
    TGestEltIndex& t = g.FicIndexPerson()->Table();
    TEltIndex e;
    for (long i = 0; i < t.GetNbElt(); ++i) {
      t.Lit(i, e);
      r.push_back(std::string(e.Enreg.Nom) + " " + e.Enreg.Prenom + " " + std::to_string(e.Enreg.NoPers) + " " +
                  std::to_string(e.Enreg.AnneeMin) + "-" + std::to_string(e.Enreg.AnneeMax));
    }
    return r;
  }

  essai::TDossierTemp Temp;
  TDialogueFixe Dialogue_{ReponseNon};
};

TEST_F(ImportGedcomTest, FamilleExempleEntiere) {
  auto g = Cree();
  const TRapportImport r = Importe(*g, Donnees("famille_exemple.ged"));
  EXPECT_EQ(r.Personnes, 8);
  EXPECT_EQ(r.Familles, 3);
  EXPECT_EQ(r.Evenements, 17);
  EXPECT_EQ(r.Lieux, 4);
  EXPECT_EQ(r.Sources, 2);
  EXPECT_EQ(r.Notes, 1);
  EXPECT_EQ(r.Version, "5.5.1");
  EXPECT_TRUE(r.Avertissements.empty()) << Raisons(r).front();
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 8);  // le numéro 1 du dossier neuf est repris
  EXPECT_EQ(Decrit(*g, 3),
            "Lefèvre|Jean Baptiste|2|M|1,2|4 |6 5 \n"
            "  NAISSANCE #  G14/06/1821# Amiens/80/Somme, Picardie/France [Saint-Leu] [] 3+0\n"
            "  UNION #  G08/05/1845# Saint-Étienne/42/Loire, Rhône-Alpes/France [] [] 3+4 source:Registre paroissial de "
            "Saint-Étienne, acte 112 citée:1\n"
            "  RESIDENCE #  G1850/1860#  [] [12 rue des Majots] 3+0\n"
            "  PROFESSION   [] [tisserand] 3+0\n"
            "  PROFESSION   [] [aubergiste] 3+0\n");
  EXPECT_EQ(Decrit(*g, 1),
            "Lefèvre|Pierre|0|M|0,0|2 |3 \n"
            "  NAISSANCE #  G02/02/1790# Amiens/80/Somme, Picardie/France [] [] 1+0 source:Registres paroissiaux d'Amiens, "
            "Saint-Leu, Archives départementales de la Somme, folio 12\n"
            "  DECES #  R12/VENT/10# Amiens/80/Somme, Picardie/France [] [] 1+0 citée:3\n"
            "  UNION #  G10/01/1815# Amiens/80/Somme, Picardie/France [] [] 1+2\n"
            "  PROFESSION   [] [Tisserand] 1+0\n"
            "  note:Pierre tenait un métier à tisser rue des Majots ; son fils\r\na repris l'atelier en 1845.\n");
  EXPECT_THAT(Decrit(*g, 7), testing::StartsWith("de La Fontaine|Jeanne|0|F|0,0|6 |8 \n  NAISSANCE #  G1850/1855#"));
  LiensSymetriques(*g);
}

TEST_F(ImportGedcomTest, AllerRetourDonneLeMemeDossier) {
  auto a = Cree("Premier");
  Importe(*a, Donnees("famille_exemple.ged"));
  TRapportExport re;
  const std::string ged = ExporteGedcom(*a, TVivantsExport::Tous, re);
  EXPECT_EQ(re.Personnes, 8);
  EXPECT_EQ(re.Familles, 3);
  EXPECT_EQ(re.SansBalise, 0);
  EXPECT_THAT(ged, HasSubstr("1 CHAR UTF-8\n"));
  // L'auteur que 5.5.1 demande à l'en-tête ; relu, il n'est pas dit (il est de l'en-tête).
  EXPECT_THAT(ged, HasSubstr("0 HEAD\n1 SOUR RQBASE\n2 NAME rqbase\n1 SUBM @U1@\n"));
  EXPECT_THAT(ged, HasSubstr("0 @U1@ SUBM\n1 NAME rqbase\n0 TRLR\n"));
  EXPECT_THAT(ged, HasSubstr("0 @I3@ INDI\n1 NAME Jean \"Baptiste\" /Lef\xC3\xA8vre/\n"));  // UTF-8
  // La personne citée dans un événement s'écrit sous une balise propre : GEDCOM 5.5.1 n'a pas
  // d'ASSO sous un événement.
  EXPECT_THAT(ged, HasSubstr("2 _ASSO @I1@\n3 RELA T\xC3\xA9moin\n"));
  EXPECT_THAT(ged, testing::Not(HasSubstr("2 ASSO")));
  auto b = Cree("Second");
  const TRapportImport r = Importe(*b, ged);
  EXPECT_TRUE(r.Avertissements.empty()) << Raisons(r).front();
  EXPECT_EQ(DecritTout(*a), DecritTout(*b));
  // Et l'export du second est celui du premier, à l'octet.
  TRapportExport re2;
  EXPECT_EQ(ExporteGedcom(*b, TVivantsExport::Tous, re2), ged);
}

// L'import donne à l'index les années des personnes dont naissance et décès sont notés
// exactement (sans les relire) ; les autres passent par l'estimation. Les lignes doivent être
// celles d'une reconstruction qui estime tout le monde.
// Ce qu'un aller-retour perdait : un blanc là où une ligne longue est coupée, un « @ » dans
// une suite, une barre dans un nom de famille.
TEST_F(ImportGedcomTest, AllerRetourGardeBlancsArobasesEtBarres) {
  const std::string note = std::string(199, 'a') + " " + std::string(50, 'b') + " @ " + std::string(150, 'c') + "@";
  // La note échappée (« @@ ») et coupée en trois lignes, la dernière commençant par « @@ ».
  const std::string echappee = std::string(199, 'a') + " " + std::string(50, 'b') + " @@ " + std::string(150, 'c') + "@@";
  const std::string ged = "0 HEAD\n1 CHAR UTF-8\n0 @I1@ INDI\n1 NAME Jean /Dupont/Durand/\n"
                          "1 NOTE " + echappee.substr(0, 120) + "\n2 CONC " + echappee.substr(120, 131) + "\n2 CONC " +
                          echappee.substr(251) + "\n"
                          "1 OCCU x @@ y\n2 CONC z @@ w\n0 TRLR\n";
  auto a = Cree("Premier");
  const TRapportImport r = Importe(*a, ged);
  EXPECT_TRUE(r.Avertissements.empty()) << Raisons(r).front();
  const std::string attendu = "Dupont/Durand|Jean|0|?|0,0||\n  PROFESSION   [] [x @ yz @ w] 1+0\n  note:" + note + "\n";
  EXPECT_EQ(Decrit(*a, 1), attendu);
  TRapportExport re;
  const std::string exporte = ExporteGedcom(*a, TVivantsExport::Tous, re);
  // Aucune ligne ne finit par un blanc, aucune suite n'en commence par un.
  EXPECT_EQ(exporte.find(" \n"), std::string::npos);
  EXPECT_EQ(exporte.find("CONC  "), std::string::npos);
  auto b = Cree("Second");
  const TRapportImport r2 = Importe(*b, exporte);
  EXPECT_TRUE(r2.Avertissements.empty()) << Raisons(r2).front();
  EXPECT_EQ(Decrit(*b, 1), attendu);
  TRapportExport re2;
  EXPECT_EQ(ExporteGedcom(*b, TVivantsExport::Tous, re2), exporte);
}

// La forme des lieux de l'en-tête vaut pour tous, celle d'un lieu pour lui seul.
TEST_F(ImportGedcomTest, FormeDesLieuxDeLEnTete) {
  const std::string ged =
      "0 HEAD\n1 PLAC\n2 FORM City, County, State, Country\n"
      "0 @I1@ INDI\n1 NAME John /Smith/\n1 BIRT\n2 PLAC Springfield, Sangamon, Illinois, USA\n"
      "1 DEAT\n2 PLAC Saint-Leu, Amiens, France\n3 FORM Hameau, Ville, Pays\n0 TRLR\n";
  auto g = Cree();
  const TRapportImport r = Importe(*g, ged);
  EXPECT_TRUE(r.Avertissements.empty()) << Raisons(r).front();
  const std::string d = Decrit(*g, 1);
  EXPECT_THAT(d, HasSubstr("NAISSANCE  Springfield//Sangamon, Illinois/USA []"));
  EXPECT_THAT(d, HasSubstr("DECES  Amiens///France [Saint-Leu]"));
}

TEST_F(ImportGedcomTest, AnneesDeLIndexCommeUneReconstructionEntiere) {
  const std::string ged =
      "0 HEAD\n1 CHAR UTF-8\n"
      "0 @I1@ INDI\n1 NAME Pierre /Martin/\n1 SEX M\n1 BIRT\n2 DATE 12 MAR 1820\n1 DEAT\n2 DATE 3 JAN 1890\n"
      "1 FAMS @F1@\n"
      // Baptême et inhumation tiennent lieu de naissance et de décès.
      "0 @I2@ INDI\n1 NAME Marie /Durand/\n1 SEX F\n1 CHR\n2 DATE 5 MAY 1822\n1 BURI\n2 DATE 7 JUL 1880\n"
      "1 FAMS @F1@\n"
      // Naissance seule, puis rien : l'estimation passe par les parents.
      "0 @I3@ INDI\n1 NAME Jean /Martin/\n1 BIRT\n2 DATE 1 FEB 1845\n1 FAMC @F1@\n"
      "0 @I4@ INDI\n1 NAME Louis Paul /Martin/\n1 FAMC @F1@\n"
      // Décès avant la naissance : les deux années telles quelles.
      "0 @I5@ INDI\n1 NAME Paul /Inverse/\n1 BIRT\n2 DATE 1 JAN 1900\n1 DEAT\n2 DATE 1 JAN 1850\n"
      // Naissance approchée : pas exacte.
      "0 @I6@ INDI\n1 NAME Anne /Vers/\n1 BIRT\n2 DATE ABT 1830\n1 DEAT\n2 DATE 2 FEB 1890\n"
      // Naissance sans date : le baptême daté la remplace.
      "0 @I7@ INDI\n1 NAME Rose /Sansdate/\n1 BIRT\n1 CHR\n2 DATE 3 MAR 1801\n1 DEAT\n2 DATE 4 APR 1870\n"
      // Deux naissances dans le désordre : la première après le classement des faits.
      "0 @I8@ INDI\n1 NAME Henri /Double/\n1 BIRT\n2 DATE 1 JAN 1811\n1 BIRT\n2 DATE 1 JAN 1810\n"
      "1 DEAT\n2 DATE 1 JAN 1880\n"
      "0 @F1@ FAM\n1 HUSB @I1@\n1 WIFE @I2@\n1 MARR\n2 DATE 10 JUN 1843\n1 CHIL @I3@\n1 CHIL @I4@\n"
      "0 TRLR\n";
  auto g = Cree();
  Importe(*g, ged);
  const std::string importees = LignesIndex(*g);
  EXPECT_THAT(importees, HasSubstr("1 MARTIN PIERRE 1820-1890\n"));
  EXPECT_THAT(importees, HasSubstr("2 DURAND MARIE 1822-1880\n"));
  EXPECT_THAT(importees, HasSubstr("3 MARTIN JEAN 1845-1945\n"));
  EXPECT_THAT(importees, HasSubstr("4 MARTIN LOUIS "));
  EXPECT_THAT(importees, HasSubstr("4 MARTIN PAUL "));
  EXPECT_THAT(importees, HasSubstr("5 INVERSE PAUL 1900-1850\n"));
  EXPECT_THAT(importees, HasSubstr("7 SANSDATE ROSE 1801-1870\n"));
  EXPECT_THAT(importees, HasSubstr("8 DOUBLE HENRI 1810-1880\n"));
  // La personne sans date a des années estimées, pas inconnues.
  EXPECT_THAT(importees, testing::Not(HasSubstr("4 MARTIN LOUIS 0-0")));
  // La mémoire faite des lignes écrites est celle que la table redonne, et elle est classée.
  ASSERT_TRUE(g->FicIndexPerson()->TableChargee());
  const std::vector<std::string> memoire = MemoireIndex(*g);
  EXPECT_EQ(memoire.size(), 9u);
  EXPECT_EQ(memoire.front(), "DOUBLE HENRI 8 1810-1880");
  EXPECT_EQ(memoire.back(), "VERS ANNE 6 " + importees.substr(importees.find("6 VERS ANNE ") + 12, 9));
  g->FicIndexPerson()->ReinitTableIndexBis();
  EXPECT_EQ(MemoireIndex(*g), memoire);
  ASSERT_TRUE(g->FicIndexPerson()->ReinitTableIndex());
  EXPECT_EQ(LignesIndex(*g), importees);
  // Le même fichier importé une seconde fois : ses personnes suivent celles du dossier (9 à
  // 16), et leurs années vont bien à leurs numéros.
  Importe(*g, ged);
  const std::string deuxFois = LignesIndex(*g);
  EXPECT_THAT(deuxFois, HasSubstr("9 MARTIN PIERRE 1820-1890\n"));
  EXPECT_THAT(deuxFois, HasSubstr("16 DOUBLE HENRI 1810-1880\n"));
  ASSERT_TRUE(g->FicIndexPerson()->ReinitTableIndex());
  EXPECT_EQ(LignesIndex(*g), deuxFois);
  // Sans estimateur posé, les années restent inconnues, même pour l'import.
  auto h = Cree("SansEstimation");
  h->FicIndexPerson()->Fourchette = nullptr;
  Importe(*h, ged);
  EXPECT_THAT(LignesIndex(*h), HasSubstr("1 MARTIN PIERRE 0-0\n"));
  EXPECT_THAT(LignesIndex(*h), testing::Not(HasSubstr("1820")));
}

// Les listes de tous les événements lues d'un coup (celles de l'export) sont, événement par
// événement, celles que la base donne à un seul événement.
TEST_F(ImportGedcomTest, ListesDesEvenementsLuesDUnCoup) {
  const std::string ged =
      "0 HEAD\n1 CHAR UTF-8\n"
      "0 @I1@ INDI\n1 NAME Pierre /Martin/\n1 BIRT\n2 DATE 12 MAR 1820\n2 SOUR Registre A\n2 SOUR Registre B\n"
      "2 SOUR Registre C\n2 OBJE\n3 FILE Images/acte1.jpg\n2 OBJE\n3 FILE Images/acte2.jpg\n2 ASSO @I3@\n"
      "3 RELA Parrain\n2 ASSO @I2@\n1 DEAT\n2 SOUR Registre D\n1 OCCU tisserand\n"
      "0 @I2@ INDI\n1 NAME Marie /Durand/\n1 BIRT\n2 OBJE\n3 FILE Images/marie.jpg\n"
      "0 @I3@ INDI\n1 NAME Jean /Martin/\n"
      "0 TRLR\n";
  auto g = Cree();
  Importe(*g, ged);
  TModuleBDD* bdd = g->ModuleBDD();
  // Une source détachée (événement 0) n'est la liste de personne.
  TSource seule(bdd);
  seule.SetDescriptif("Détachée");
  ASSERT_TRUE(bdd->EnregistrementSource(&seule));
  const TListesDesEvens listes(bdd);
  std::string vu;
  long evens = 0;
  for (long no = 1; no <= 3; ++no) {
    TPerson p(g->FicPersons(), no, true);
    p.ChargeListes();
    for (const TEvenementTV& ev : *p.Evens()) {
      TEvenement::TEnreg e = ev.Enreg;
      ++evens;
      bdd->ChargerSourceOfEven(&e);
      bdd->ChargerIllustrationOfEven(&e);
      bdd->ChargerPersAssocieeOfEven(&e);
      size_t i = 0;
      for (const TSource& s : listes.Sources(e.No)) {
        EXPECT_EQ(s.No, e.Sources[i++]);
        EXPECT_EQ(s.Enreg.Descriptif, TSource(bdd, s.No).Enreg.Descriptif);
        vu += s.Enreg.Descriptif + ";";
      }
      EXPECT_EQ(e.Sources[i], 0) << "événement " << e.No;
      i = 0;
      for (const TIllustration& ill : listes.Illustrations(e.No)) {
        EXPECT_EQ(ill.No, e.Illustrations[i++]);
        vu += ill.Enreg.Chemin + ";";
      }
      EXPECT_EQ(e.Illustrations[i], 0) << "événement " << e.No;
      i = 0;
      for (const TPersAssociee& pa : listes.PersAssociees(e.No)) {
        EXPECT_TRUE(pa == e.PersAssociees[i++]);
        vu += std::to_string(pa.Lien.No) + (pa.LienQualite ? "q;" : ";");
      }
      EXPECT_TRUE(e.PersAssociees[i].Vide()) << "événement " << e.No;
    }
  }
  EXPECT_EQ(evens, 4);  // la profession est un événement
  EXPECT_EQ(vu, "Registre A;Registre B;Registre C;Images/acte1.jpg;Images/acte2.jpg;3q;2;Registre D;Images/marie.jpg;");
  EXPECT_EQ(listes.Sources(0).size(), 0u);
  EXPECT_EQ(listes.Sources(999999).size(), 0u);
  // Sans base ouverte : des listes vides, sans erreur.
  const TListesDesEvens sansBase(nullptr);
  EXPECT_EQ(sansBase.PersAssociees(1).size(), 0u);

  // La transaction de lecture d'un long parcours : ouverte, laissée à une transaction déjà
  // ouverte, refermée à la fin sans rien défaire.
  sqlite3* h = bdd->Base().getHandle();
  {
    const TLectureSuivie lecture(bdd);
    EXPECT_EQ(sqlite3_get_autocommit(h), 0);
    { const TLectureSuivie dedans(bdd); }
    EXPECT_EQ(sqlite3_get_autocommit(h), 0);
    seule.SetDescriptif("Changée pendant la lecture");
    ASSERT_TRUE(bdd->EnregistrementSource(&seule));
  }
  EXPECT_EQ(sqlite3_get_autocommit(h), 1);
  EXPECT_EQ(TSource(bdd, seule.No).Enreg.Descriptif, "Changée pendant la lecture");
  { const TLectureSuivie sansBase2(nullptr); }
}

TEST_F(ImportGedcomTest, FichierAbimeDonneUnRapportEtDesLiensSymetriques) {
  const std::string ged =
      "0 HEAD\n"
      "0 @I1@ INDI\n1 NAME Paul /Martin/\n1 SEX M\n1 FAMS @F1@\n1 FAMC @F2@\n"  // 2-6
      "0 @I2@ INDI\n1 NAME Marie /Durand/\n1 SEX F\n1 _INCONNU valeur\n"    // 7-10
      "0 @I2@ INDI\n1 NAME Double /Durand/\n"                                 // 11-12
      "0 @I3@ INDI\n1 NAME Luc /Martin/\n1 BIRT\n2 DATE 31 FEB 1900\n"         // 13-16
      "0 @F1@ FAM\n1 HUSB @I1@\n1 WIFE @I2@\n1 HUSB @I3@\n1 CHIL @I3@\n1 CHIL @I9@\n"  // 17-22
      "0 @F2@ FAM\n1 HUSB @I3@\n"                                             // 23-24 : cycle I1 <-> I3
      "0 @F3@ FAM\n"                                                          // 25 : sans membre
      "0 @F4@ FAM\n1 HUSB @I1@\n1 WIFE @I1@\n"                                // 26-28 : lui-même
      "0 TRLR\n";
  auto g = Cree();
  const TRapportImport r = Importe(*g, ged);
  EXPECT_EQ(r.Personnes, 4);  // la référence en double donne tout de même une personne
  const std::vector<std::string> raisons = Raisons(r);
  for (const char* attendu :
       {"10:balise que le catalogue ne connaît pas : non importée",
        "11:référence en double : les renvois vont au premier enregistrement de cette référence",
        "16:date hors des bornes du calendrier : texte gardé dans la note de l'événement",
        "20:deuxième conjoint de même place dans la famille : le premier est gardé",
        "22:renvoi vers une personne absente du fichier",
        "25:famille sans membre : non importée",
        "26:la même personne est les deux conjoints de la famille : seconde place laissée"})
    EXPECT_THAT(raisons, testing::Contains(std::string(attendu)));
  // Le cycle : un des deux liens de parent n'est pas écrit.
  EXPECT_THAT(raisons, testing::Contains(HasSubstr("cycle de parents")));
  // I1 est la personne 1, le double de I2 la 3, I3 la 4.
  TPerson p1(g->FicPersons(), 1), p3(g->FicPersons(), 4);
  const long pere1 = p1.Enreg.Pere.No, pere3 = p3.Enreg.Pere.No;
  EXPECT_TRUE(pere1 == 0 || pere3 == 0);
  EXPECT_THAT(Decrit(*g, 4), HasSubstr("note:Date : 31 FEB 1900"));
  LiensSymetriques(*g);
}

// Les enregistrements partagés qu'aucune ligne importée ne cite sont dits, avec leur texte,
// même si le fichier lu est rendu avant la fin de l'import.
TEST_F(ImportGedcomTest, EnregistrementsNonCitesDits) {
  const std::string ged =
      "0 HEAD\n"
      "0 @I1@ INDI\n1 NAME Jean /Martin/\n1 BIRT\n2 SOUR @S1@\n"  // 2-5
      "0 @S1@ SOUR\n1 TITL Registre cité\n"                        // 6-7
      "0 @S2@ SOUR\n1 TITL Registre oublié\n"                      // 8-9
      "0 @N1@ NOTE Note seule\n"                                    // 10
      "0 TRLR\n";
  auto g = Cree();
  auto lu = LitGedcom(ged);
  const TRapportImport r = ImporteGedcom(*g, *lu);
  EXPECT_EQ(r.Personnes, 1);
  EXPECT_EQ(r.Sources, 1);
  ASSERT_EQ(r.Avertissements.size(), 2u) << Raisons(r).front();
  EXPECT_EQ(Raisons(r), (std::vector<std::string>{
                            "8:enregistrement qu'aucune ligne importée ne cite : non importé",
                            "10:enregistrement qu'aucune ligne importée ne cite : non importé"}));
  EXPECT_EQ(r.Avertissements[0].Texte, "0 @S2@ SOUR");
  EXPECT_EQ(r.Avertissements[1].Texte, "0 @N1@ NOTE Note seule");
  // Le fichier lu a été rendu une fois les personnes écrites.
  EXPECT_EQ(lu->Arbre, nullptr);
  EXPECT_TRUE(lu->Lignes.Lignes.empty());
}

// Ce qui n'est pas lu sous une date, un lieu, une citation, un média, une personne citée ou
// une note, ce qu'un enregistrement cité a de plus que ce que le dossier garde, un doublon de
// date, de lieu ou de personne citée, les faits d'une famille sans couple, une valeur coupée :
// chaque ligne est dite, avec son numéro, et rien d'autre ne l'est.
TEST_F(ImportGedcomTest, RienNEstLaisseSansEtreDit) {
  const std::string longue(1 << 20, 'x');
  const std::string ged =
      "0 HEAD\n"                                                                     // 1
      "0 @I1@ INDI\n1 NAME Jean /Martin/\n1 FAMC @F2@\n2 PEDI birth\n"                // 2-5
      "1 BIRT\n2 DATE 1 JAN 1800\n3 TIME 10:00\n2 DATE 2 FEB 1801\n"                  // 6-9
      "2 PLAC Lyon\n3 MAP\n4 LATI N45.75\n2 PLAC Paris\n"                            // 10-13
      "2 SOUR @S1@\n3 PAGE p. 4\n3 QUAY 3\n3 DATA\n4 TEXT acte\n3 NOTE de citation\n"  // 14-19
      "2 OBJE\n3 FILE photo.jpg\n4 FORM jpg\n3 TITL Acte\n"                          // 20-23
      "2 ASSO @I2@\n3 RELA Parrain\n3 NOTE de l'association\n2 ASSO @I2@\n3 ROLE WITN\n"  // 24-28
      "2 NOTE Note naissance\n3 SOUR @S1@\n"                                         // 29-30
      "1 OCCU " + longue + "\n"                                                      // 31
      "1 DEAT\n2 SOUR @S1@\n"                                                        // 32-33
      "0 @I2@ INDI\n1 NAME Paul /Temoin/\n1 FAMS @F1@\n"                             // 34-36
      "0 @F1@ FAM\n1 HUSB @I2@\n1 MARR\n2 DATE 1850\n1 NOTE sans couple\n"           // 37-41
      "0 @F2@ FAM\n1 HUSB @I2@\n1 CHIL @I1@\n2 _FREL Natural\n"                       // 42-45
      "0 @S1@ SOUR\n1 TITL Registre\n1 PUBL Archives\n1 TEXT transcription\n"         // 46-49
      "1 NOTE de la source\n1 REPO @R9@\n"                                           // 50-51
      "0 TRLR\n";
  auto g = Cree();
  const TRapportImport r = Importe(*g, ged);
  EXPECT_EQ(r.Personnes, 2);
  std::vector<long> lignes;
  for (const auto& a : r.Avertissements) lignes.push_back(a.Ligne);
  EXPECT_EQ(lignes, (std::vector<long>{5, 8, 9, 11, 12, 13, 16, 17, 18, 19, 22, 23, 26, 27, 28, 30, 31, 37, 39, 40,
                                       41, 45, 48, 49, 50, 51}))
      << testing::PrintToString(Raisons(r));
  const std::vector<std::string> raisons = Raisons(r);
  for (const char* attendu : {"9:deuxième date de l'événement : la première est gardée",
                              "13:deuxième lieu de l'événement : le premier est gardé",
                              "27:personne déjà citée dans l'événement : non importée",
                              "39:fait d'une famille dont le couple n'est pas écrit : non importé"})
    EXPECT_THAT(raisons, testing::Contains(std::string(attendu)));
  EXPECT_THAT(raisons, testing::Contains(HasSubstr("31:valeur coupée à 100 caractères")));
  // Les premières date et lieu sont gardés, la source citée deux fois n'est dite qu'une fois.
  const std::string jean = Decrit(*g, 1);
  EXPECT_THAT(jean, HasSubstr("01/01/1800# Lyon///"));
  EXPECT_THAT(jean, HasSubstr("source:Registre, p. 4 citée:2 note:"));
  // La famille de Paul seul n'a donné aucun lien ; celle de Jean en a donné un.
  EXPECT_EQ(r.Familles, 1);
}

TEST_F(ImportGedcomTest, Le151eEnfantEstDitEtPasEcrit) {
  std::string ged = "0 HEAD\n0 @P@ INDI\n1 NAME Pere /Nombreux/\n1 SEX M\n";
  for (int i = 0; i < 152; ++i) ged += "0 @E" + std::to_string(i) + "@ INDI\n1 NAME E" + std::to_string(i) + " /Nombreux/\n";
  ged += "0 @F1@ FAM\n1 HUSB @P@\n";
  for (int i = 0; i < 152; ++i) ged += "1 CHIL @E" + std::to_string(i) + "@\n";
  ged += "0 TRLR\n";
  auto g = Cree();
  const TRapportImport r = Importe(*g, ged);
  EXPECT_EQ(r.Personnes, 153);
  TPerson pere(g->FicPersons(), 1);
  EXPECT_EQ(pere.CompteNbEnfant(), 150);
  TPerson dernier(g->FicPersons(), 153);
  const long pereDuDernier = dernier.Enreg.Pere.No;
  EXPECT_EQ(pereDuDernier, 0);
  // Chaque refus cite la ligne CHIL de l'enfant, et le nomme.
  ASSERT_EQ(r.Avertissements.size(), 2u) << testing::PrintToString(Raisons(r));
  EXPECT_EQ(Raisons(r), (std::vector<std::string>{"461:151e enfant du père : lien avec E150 Nombreux non écrit",
                                                  "462:151e enfant du père : lien avec E151 Nombreux non écrit"}));
  EXPECT_EQ(r.Avertissements[1].Texte, "1 CHIL @E151@");
  LiensSymetriques(*g);
}

// Le rapport montre chaque ligne comme le fichier l'écrit (blancs, niveau, « @@ », première
// ligne d'une valeur continuée), et un fichier sans TRLR est dit une fois peut-être tronqué.
TEST_F(ImportGedcomTest, RapportCiteLesLignesDOrigine) {
  auto g = Cree();
  const TRapportImport r =
      Importe(*g, "0 HEAD\n0 @I1@ INDI\n1 NAME Jean /X/\n3   _FOO  a@@b\n1 _BAR x\n2 CONC y\n0 @I2@ INDI\n");
  EXPECT_EQ(r.Personnes, 2);
  std::vector<std::string> vus;
  for (const auto& a : r.Avertissements) vus.push_back(std::to_string(a.Ligne) + "|" + a.Texte);
  EXPECT_EQ(vus, (std::vector<std::string>{"4|3   _FOO  a@@b", "4|3   _FOO  a@@b", "5|1 _BAR x", "7|0 @I2@ INDI"}))
      << testing::PrintToString(Raisons(r));
  EXPECT_EQ(r.Avertissements.back().Raison, "le fichier ne finit pas par TRLR : il est peut-être tronqué");
}

TEST_F(ImportGedcomTest, LignesDUnMegaoctetEtFichierTronque) {
  // Un nom et une note d'un mégaoctet : le nom est coupé (et c'est dit), la note gardée.
  const std::string long1(1 << 20, 'a');
  auto g = Cree();
  TRapportImport r = Importe(*g, "0 HEAD\n0 @I1@ INDI\n1 NAME Jean /" + long1 + "/\n1 NOTE " + long1 + "\n0 TRLR\n");
  EXPECT_EQ(r.Personnes, 1);
  EXPECT_EQ(r.Notes, 1);
  ASSERT_EQ(r.Avertissements.size(), 1u);
  EXPECT_EQ(r.Avertissements[0].Raison, "nom coupé à 100 caractères");
  EXPECT_LE(r.Avertissements[0].Texte.size(), 123u);
  TPerson p(g->FicPersons(), 1);
  EXPECT_EQ(std::string(p.Enreg.Nom), std::string(100, 'a'));
  EXPECT_EQ(TNote(g->FicNotes(), p.Enreg.Note).RecupNoteTxt("").size(), 100000u);  // coupée à la lecture brute
  // La famille d'exemple coupée au milieu d'une ligne : ce qui est là est importé, les renvois
  // vers ce qui manque sont dits, les liens restent symétriques.
  const std::string complet = Donnees("famille_exemple.ged");
  auto h = Cree("Tronque");
  r = Importe(*h, complet.substr(0, complet.find("1 CHIL @I6@") + 5));
  EXPECT_EQ(r.Personnes, 8);
  EXPECT_EQ(r.Familles, 2);
  EXPECT_THAT(Raisons(r), testing::Contains(HasSubstr("renvoi vers une famille absente du fichier")));
  LiensSymetriques(*h);
}

TEST_F(ImportGedcomTest, FichierIllisibleNeChangeRien) {
  auto g = Cree();
  g->FermerFichiers();
  g.reset();
  const auto avant = essai::Instantane(Temp.Dossier());
  g = std::make_unique<TGestFichier>(Temp.Prs(), false);
  EXPECT_THROW(ImporteGedcom(*g, std::string(4096, '\xFF')), ERqBase);
  EXPECT_THROW(ImporteGedcom(*g, ""), ERqBase);
  g.reset();
  EXPECT_EQ(essai::Instantane(Temp.Dossier()), avant);
}

TEST_F(ImportGedcomTest, FichiersDAutresProgrammes) {
  auto g = Cree();
  TRapportImport r = Importe(*g, Donnees("gramps-sample.ged"));
  EXPECT_EQ(r.Personnes, 42);
  EXPECT_EQ(r.Familles, 15);
  LiensSymetriques(*g);
  auto h = Cree("Lifelines");
  r = Importe(*h, Donnees("lifelines-ti.ged"));
  EXPECT_EQ(r.Personnes, 10);
  EXPECT_THAT(Raisons(r), testing::Contains(HasSubstr("deuxième conjoint de même place")));
  LiensSymetriques(*h);
}

TEST_F(ImportGedcomTest, Gedcom7NotesPartageesEtRenvoisVides) {
  const std::string ged =
      "\xEF\xBB\xBF" "0 HEAD\n1 GEDC\n2 VERS 7.0\n"
      "0 @I1@ INDI\n1 NAME Zo\xC3\xAB /Martin/\n1 SEX F\n1 SNOTE @N1@\n1 BIRT\n2 DATE BET 1850 AND 1860\n"
      "2 SNOTE @N1@\n1 ASSO @I2@\n2 ROLE FRIEND\n1 FAMC @F1@\n"
      "0 @F1@ FAM\n1 HUSB @VOID@\n1 CHIL @I1@\n"
      "0 @N1@ SNOTE Note partag\xC3\xA9" "e\n0 TRLR\n";
  auto g = Cree();
  const TRapportImport r = Importe(*g, ged);
  EXPECT_EQ(r.Version, "7.0");
  EXPECT_EQ(r.Codage, "UTF-8");
  EXPECT_EQ(r.Notes, 2);
  EXPECT_EQ(Decrit(*g, 1),
            "Martin|Zoë|0|F|0,0||\n  NAISSANCE #  G1850/1860#  [] [] 1+0 note:Note partagée\n  note:Note partagée\n");
  const std::vector<std::string> raisons = Raisons(r);
  // ASSO et sa ligne ROLE sont dits ; @VOID@ (personne, dit exprès) ne l'est pas, mais la
  // famille qui n'a plus que son enfant ne donne aucun lien, et c'est dit.
  EXPECT_EQ(raisons, (std::vector<std::string>{
                         "11:personne associée hors d'un événement : non importée (le dossier cite les personnes "
                         "dans ses événements)",
                         "12:personne associée hors d'un événement : non importée (le dossier cite les personnes "
                         "dans ses événements)",
                         "14:famille d'un seul membre : aucun lien à écrire"}));
}

TEST_F(ImportGedcomTest, VivantsExclusOuAnonymises) {
  const std::string ged =
      "0 HEAD\n0 @I1@ INDI\n1 NAME Ancien /Martin/\n1 BIRT\n2 DATE 1850\n1 DEAT\n2 DATE 1910\n1 FAMS @F1@\n"
      "0 @I2@ INDI\n1 NAME Recent /Martin/\n1 SEX F\n1 BIRT\n2 DATE 1990\n1 FAMC @F1@\n"
      "0 @F1@ FAM\n1 HUSB @I1@\n1 CHIL @I2@\n0 TRLR\n";
  auto g = Cree();
  Importe(*g, ged);
  TRapportExport r;
  std::string s = ExporteGedcom(*g, TVivantsExport::Exclure, r);
  EXPECT_EQ(r.Vivants, 1);
  EXPECT_EQ(r.Personnes, 1);
  EXPECT_THAT(s, testing::Not(HasSubstr("Recent")));
  EXPECT_THAT(s, testing::Not(HasSubstr("@I2@")));
  s = ExporteGedcom(*g, TVivantsExport::Anonymiser, r);
  EXPECT_EQ(r.Personnes, 2);
  EXPECT_THAT(s, testing::Not(HasSubstr("Recent")));
  // Ni nom, ni sexe, ni faits : seule la place dans la famille reste.
  EXPECT_THAT(s, HasSubstr("0 @I2@ INDI\n1 NAME Vivant //\n1 FAMC @F1@\n"));
}

}  // namespace
}  // namespace rqbase
