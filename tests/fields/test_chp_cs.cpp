// TChpCs : lecture des lignes courtes et décalées, écriture complète, morceaux.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include <unistd.h>

#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/table_defaut.h"

using namespace rqbase;

namespace {

std::unique_ptr<TChpCs> Lit(const std::string& ligne) {
  auto c = std::make_unique<TChpCs>(false);
  c->Decode(ligne);
  return c;
}

int NbTab(const std::string& s) { return int(std::count(s.begin(), s.end(), '\t')); }

// Les colonnes 1 à n d'une ligne par défaut (pour fabriquer des lignes courtes).
std::string Colonnes(const std::string& ligne, int n) {
  size_t p = 0;
  for (int i = 0; i < n; ++i) {
    p = ligne.find('\t', p);
    if (p == std::string::npos) return ligne;
    ++p;
  }
  return ligne.substr(0, p - 1);
}

const std::string& LigneDefaut(const std::string& libelle) {
  for (const auto& l : LignesDefaut())
    if (l.rfind(libelle + "\t", 0) == 0) return l;
  static const std::string vide;
  return vide;
}

}  // namespace

TEST(ChpCs, LigneCourteDeDouzeColonnesCompleteCeQuiManque) {
  auto c = Lit("NOM\tNom\tNOM\t\t1\t40\t\t\t\t\tN\tP");
  EXPECT_EQ(c->Type, tcNom);
  EXPECT_EQ(c->NbMorceaux, 1);
  EXPECT_EQ(c->TailleMorceaux[0], 40);
  EXPECT_TRUE(c->Symbole.empty());
  EXPECT_EQ(c->Expressions.Count(), 0);
  EXPECT_TRUE(c->AvecResume);
  EXPECT_FALSE(c->ApresDeces);
  EXPECT_TRUE(c->OuiNon);
  EXPECT_EQ(c->ValDefaut, 0);
  EXPECT_EQ(NbTab(c->Code()), 24);
}

TEST(ChpCs, RegleDesLignesCourtesSelonLeNombreDeTabulations) {
  struct Cas {
    const char* libelle;
    int colonnes;
    bool apresDeces, avecResume;
  };
  const Cas cas[] = {
      {"INHUMATION", 15, true, true},   {"INHUMATION", 16, false, true}, {"CREMATION", 12, true, true},
      {"INVENTAIRE_DECES", 14, true, true}, {"PROFESSION", 21, false, false}, {"DIPLOME", 12, false, false},
      {"PROFESSION", 22, false, false}, {"BAPTEME", 21, false, true},
  };
  for (const auto& k : cas) {
    // Une ligne où la colonne 16 dit N et la colonne 22 dit N quand elles existent.
    std::string l = std::string(k.libelle) + "\tX\tES\t\t1\t20\t\t\t\t\tN\tP\t\t\t\tN\tO\t0\t\tN\t\tN\t0\t0\t";
    auto c = Lit(Colonnes(l, k.colonnes));
    EXPECT_EQ(c->ApresDeces, k.apresDeces) << k.libelle << " " << k.colonnes;
    EXPECT_EQ(c->AvecResume, k.avecResume) << k.libelle << " " << k.colonnes;
  }
}

TEST(ChpCs, DecalagesVoulusDesColonnes17Et18EtDeConfexp) {
  auto c = Lit("A\tA\tCPB\t\t1\t1\t\t\t\t\tN\tP\t\t\t\tN\tN\t12");
  EXPECT_TRUE(c->OuiNon);  // la colonne 17 n'est pas lue
  EXPECT_EQ(c->ValDefaut, 1);  // seul le premier chiffre
  EXPECT_EQ(Lit("A\tA\tCPB\t\t1\t1\t\t\t\t\tN\tP\t\t\t\tN\tO\t-")->ValDefaut, -1);
  EXPECT_EQ(Lit("A\tA\tCPB\t\t1\t1\t\t\t\t\tN\tP\t\t\t\tN\tO\t")->ValDefaut, 0);
  EXPECT_EQ(Lit("A\tA\tCPB\t\t1\t1\t\t\t\t\tN\tP\t\t\t\tN\tO\t-")->GetValParDefaut(), '?');

  auto conf = Lit("CONFIDENTIEL_EXP\tConf\tCONFEXP\t\t1\t1");
  EXPECT_EQ(conf->Type, tcEs);  // Code sait écrire CONFEXP, Decode ne le connaît pas
  conf->Type = tcConfExp;
  EXPECT_EQ(Colonnes(conf->Code(), 3), "CONFIDENTIEL_EXP\tConf\tCONFEXP");
  EXPECT_EQ(Lit(conf->Code())->Type, tcEs);
  EXPECT_EQ(Lit("A\tA\tINCONNU")->Type, tcEs);
}

TEST(ChpCs, EntiersEtCheminNeSontLusQueSurLesLignesLonguesPrevues) {
  const std::string base = "A\tA\tES\t\t1\t20\t\t\t\t\tN\tP\t\t\t\tN\tO\t0\t\tN\t\tO\t7\t8\t/m.txt";
  EXPECT_EQ(Lit(Colonnes(base, 23))->Entier1, 0);  // 22 tabulations : pas encore lus
  EXPECT_EQ(Lit(Colonnes(base, 24))->Entier1, 7);
  EXPECT_EQ(Lit(Colonnes(base, 24))->CheminModele, "");
  EXPECT_EQ(Lit(base)->CheminModele, "/m.txt");
  EXPECT_EQ(Lit(Colonnes(base, 18) + "\tX|Y")->Equivalents, "");  // 18 tabulations
  EXPECT_EQ(Lit(Colonnes(base, 18) + "\tX|Y\tO")->Equivalents, "X|Y");
  EXPECT_EQ(Lit("A\tA\tES\t\t1\t20\t\t\t\t\tN\tP\t\t\t\tN\tO\t0\t\tN\t\tO\tabc\t9")->Entier1, 0);
}

// La réduction des largeurs doit donner ce que donne l'algorithme un caractère à la fois.
TEST(ChpCs, LargeursRameneesACentCommeCaractereParCaractere) {
  auto naif = [](std::vector<short> t) {
    long s = 0;
    for (short x : t) s += x;
    while (s > 100) {
      --*std::max_element(t.begin(), t.end());
      --s;
    }
    return t;
  };
  EXPECT_EQ(Lit("A\tA\tEC\t\t3\t60, 60, 20")->TailleMorceaux, (std::vector<short>{40, 40, 20}));
  EXPECT_EQ(Lit("A\tA\tEC\t\t3\t60, 60, 21")->TailleMorceaux, (std::vector<short>{39, 40, 21}));
  std::mt19937 alea(42);
  for (int essai = 0; essai < 500; ++essai) {
    const int n = 1 + int(alea() % 8);
    std::vector<short> t;
    std::string liste;
    for (int i = 0; i < n; ++i) {
      t.push_back(short(alea() % 90));
      liste += (i ? ", " : "") + std::to_string(t.back());
    }
    auto c = Lit("A\tA\tEC\t\t" + std::to_string(n) + "\t" + liste);
    EXPECT_EQ(c->TailleMorceaux, naif(t)) << liste;
  }
}

TEST(ChpCs, LargeursIllisiblesOuEnTropNeCassentRien) {
  auto c = Lit("A\tA\tEC\t\t3\tabc, , 7, 99, 99\tx, y");
  EXPECT_EQ(c->TailleMorceaux, (std::vector<short>{15, 15, 7}));
  EXPECT_EQ(c->NomMorceaux, (std::vector<std::string>{"x", "y", ""}));
  EXPECT_EQ(Lit("A\tA\tEC\t\t-4\t1, 2")->NbMorceaux, 0);
  EXPECT_EQ(Lit("A\tA\tEC\t\t99999999999\t")->NbMorceaux, TChpCs::kNbMorceauxMax);
  EXPECT_EQ(Lit("")->LibelleInterne, "");
}

TEST(ChpCs, ListeDeChoixPrendSesMorceauxDesNoms) {
  auto c = Lit("C\tC\tCPC\t\t1\t13\tAbcdefghijklmnopqrst, B");
  EXPECT_EQ(c->NbMorceaux, 2);
  EXPECT_EQ(c->TailleMorceaux[0], 22);
  auto religion = Lit(LigneDefaut("RELIGION"));
  EXPECT_EQ(religion->NbMorceaux, 8);
  EXPECT_EQ(religion->NomMorceaux[7], "Protestante");
  EXPECT_EQ(religion->TailleMorceaux[0], 13);  // "Protestante" + 2
}

TEST(ChpCs, CodePuisDecodeEstStableSurToutesLesLignesParDefaut) {
  ASSERT_EQ(LignesDefaut().size(), 59u);
  for (const auto& l : LignesDefaut()) {
    EXPECT_EQ(NbTab(l), 24) << l;
    auto a = Lit(l);
    const std::string code = a->Code();
    EXPECT_EQ(NbTab(code), 24);
    EXPECT_EQ(Lit(code)->Code(), code) << l;
  }
  // Une ligne d'événement écrite telle qu'elle est lue, au dictionnaire près (0 écrit).
  std::string bapteme = LigneDefaut("BAPTEME");
  bapteme.replace(bapteme.find("CHR\t\t\t"), 6, "CHR\t\t0\t");
  EXPECT_EQ(Lit(bapteme)->Code(), bapteme);
  // Hors événement, les colonnes 19 et 20 restent vides même si la ligne en avait.
  auto simple = Lit("T\tT\tCPA\t\t1\t20\t\t\t\t\tN\tP\t\t\t\tN\tO\t0\tX\tO\t\tO\t0\t0\t");
  EXPECT_EQ(simple->Equivalents, "X");
  EXPECT_NE(simple->Code().find("\t0\t\t\t\tO\t"), std::string::npos);
}

TEST(ChpCs, LignesParDefautDisentCeQuilFaut) {
  auto deces = Lit(LigneDefaut("DECES"));
  EXPECT_EQ(deces->Symbole, "+");
  EXPECT_EQ(deces->LibelleFeminin, "Décédée");
  EXPECT_EQ(deces->Equivalents, "INHUMATION");
  EXPECT_EQ(deces->Expressions.Count(), 3);
  EXPECT_EQ(Lit(LigneDefaut("NAISSANCE"))->Expressions.Count(), 6);
  EXPECT_EQ(Lit(LigneDefaut("PACS"))->Expressions[0], "#S ((établissent un pacs) #D #L");
  EXPECT_EQ(Lit(LigneDefaut("SERVICE_MILITAIRE"))->IndexFicDupli[0], 44);
  EXPECT_EQ(Lit(LigneDefaut("RESIDENCE"))->SousTagGedCom[0], "ADDR");
  EXPECT_FALSE(Lit(LigneDefaut("PROFESSION"))->AvecResume);
  auto sig = Lit(LigneDefaut("SIGNALEMENT"));
  EXPECT_EQ(sig->NoModele, 0);
  EXPECT_EQ(sig->GetModelNote("/nulle/part").rfind("Nez : ( Dos : , Base : ", 0), 0u);
  auto reg = Lit(LigneDefaut("REGISTRE_MATRICULE"));
  EXPECT_EQ(reg->RetTailleMorceauChn(), "20, 4, 5, 5");
  EXPECT_EQ(reg->RetNomMorceauxChn(), "Bureau, Classe, Matricule, Degré d'instruction");
  EXPECT_EQ(reg->Equivalents, "RESIDENCE|SIGNALEMENT");
  EXPECT_EQ(Lit(LigneDefaut("EDUCATION"))->NomMorceaux[0], "Niveau d'instruction");
  EXPECT_EQ(Lit(LigneDefaut("FILIATION_PERE"))->Liaison, 'N');
}

TEST(ChpCs, MorceauxLusEcritsEtResumes) {
  auto r = Lit(LigneDefaut("RECENSEMENT"));  // 90, 4, 3, 3
  std::string v;
  r->SetMorceauNo(2, "12", v, 100);
  EXPECT_EQ(v, std::string(90, ' ') + "12  ");
  r->SetMorceauNo(1, "Les Halles", v, 100);
  r->SetMorceauNo(4, "7", v, 100);
  EXPECT_EQ(v.size(), 100u);
  EXPECT_EQ(r->GetMorceauNo(1, v), "Les Halles");
  EXPECT_EQ(r->GetMorceauNo(2, v), "12");
  EXPECT_EQ(r->GetMorceauNo(3, v), "");
  EXPECT_EQ(r->GetMorceauNo(9, v), "Les Halles");  // au-delà : le morceau 1
  EXPECT_EQ(r->ResumeDonnee(v), "Les Halles - 12 -  - 7");
  r->SetMorceauNo(2, "123456", v, 95);
  EXPECT_EQ(v.size(), 95u);
  EXPECT_EQ(r->GetMorceauNo(2, v), "1234");

  auto un = Lit("A\tA\tCPA\t\t1\t10");
  std::string w = "ancienne valeur";
  un->SetMorceauNo(1, "nouvelle valeur longue", w, 8);
  EXPECT_EQ(w, "nouvelle");
  EXPECT_EQ(Lit("S\tS\tSEXE\t\t0")->GetMorceauNo(1, "M"), "");

  auto fil = Lit(LigneDefaut("FILIATION_MERE"));
  EXPECT_EQ(fil->ResumeDonnee("O"), "Certaine");
  EXPECT_EQ(fil->ResumeDonnee("?"), "Indéterminée");
  EXPECT_EQ(fil->ResumeDonnee(""), "Incertaine");  // la valeur par défaut N
  EXPECT_EQ(Lit(LigneDefaut("FAVORIS"))->ResumeDonnee("O"), "Oui");
  EXPECT_EQ(Lit(LigneDefaut("RELIGION"))->ResumeDonnee("Catholique   "), "Catholique");
}

TEST(ChpCs, TestsDeTypeEtIdentifications) {
  struct Cas {
    int type;
    bool even, simple, base, sys, perso;
    int style;
  };
  const Cas cas[] = {{tcNom, 0, 0, 1, 0, 0, 1},  {tcEmail, 0, 1, 0, 0, 1, 2}, {tcDdmf, 0, 0, 0, 1, 1, 1},
                     {tcEc, 1, 0, 0, 0, 1, 3},   {tcCpc, 0, 1, 0, 0, 1, 2},   {tcConfExp, 0, 1, 0, 0, 1, 2},
                     {tcDdNotif, 0, 0, 0, 1, 1, 1}, {42, 0, 0, 0, 0, 0, 0}};
  for (const auto& k : cas) {
    TChpCs c;
    c.Type = k.type;
    EXPECT_EQ(c.IsEvenement(), k.even) << k.type;
    EXPECT_EQ(c.IsSimple(), k.simple) << k.type;
    EXPECT_EQ(c.IsBase(), k.base) << k.type;
    EXPECT_EQ(c.IsDateGestSys(), k.sys) << k.type;
    EXPECT_EQ(c.IsPerso(), k.perso) << k.type;
    EXPECT_EQ(c.RetStyleDonnee(), k.style) << k.type;
  }
  EXPECT_EQ(TChpCs::RetTypeString(42), "Autres !");
  EXPECT_EQ(TChpCs::RetTypeString(tcNoSosa), "N° Sosa-Strad.");

  auto n = Lit(LigneDefaut("NAISSANCE"));
  EXPECT_EQ(n->RetourneIdentEven(ieInitiale, false), "N :");
  EXPECT_EQ(n->RetourneIdentEven(ieSymbole, false), "°");
  EXPECT_EQ(n->RetourneIdentEven(ieParticipe, true), "Née");
  EXPECT_EQ(n->RetourneIdentEven(ieLibelle, false), "Naissance :");
  EXPECT_EQ(n->RetourneIdentEven(ieGlyphe, false).size(), 1u);
  EXPECT_EQ(Lit(LigneDefaut("RETRAITE"))->RetourneIdentEven(ieGlyphe, false), "");
  EXPECT_TRUE(Lit(LigneDefaut("ABN_NOTIF"))->ChpNonModifiable());
  EXPECT_TRUE(Lit(LigneDefaut("DDNOTIF"))->ChpNonModifiable());
  EXPECT_TRUE(Lit(LigneDefaut("EMAIL"))->ChpNonModifiable());  // type 5 : dans 1 à 7
  EXPECT_FALSE(Lit(LigneDefaut("TITRE"))->ChpNonModifiable());
  EXPECT_TRUE(Lit(LigneDefaut("DISTANCECUM"))->IsIgnored());
  EXPECT_FALSE(Lit(LigneDefaut("DISTANCECUM"))->IsCache());
  EXPECT_TRUE(Lit(LigneDefaut("EDUCATION"))->HasSousChamps());  // un morceau nommé
  EXPECT_FALSE(Lit(LigneDefaut("TITRE"))->HasSousChamps());
}

TEST(ChpCs, CopieProfondeEtSetNbMorceaux) {
  auto r = Lit(LigneDefaut("REGISTRE_MATRICULE"));
  r->OuiNon = false;
  TChpCs copie(r.get());
  EXPECT_TRUE(copie.OuiNon);
  EXPECT_EQ(copie.Code(), Lit(r->Code())->Code());
  copie.SetNbMorceaux(6);
  EXPECT_EQ(copie.TailleMorceaux, (std::vector<short>{20, 4, 5, 5, 15, 15}));
  EXPECT_EQ(r->NbMorceaux, 4);
  copie.SetNbMorceaux(0);
  EXPECT_TRUE(copie.NomMorceaux.empty());
  EXPECT_EQ(copie.RetTailleMorceauChn(), "");
}

// Modèles de note : un fichier n'est écrit que pour un texte qui n'est pas le modèle
// intégré ; un champ sans modèle intégré a le texte vide pour modèle.
TEST(ChpCs, ModeleDeNoteNEcritQueCeQuiDiffereDuModeleIntegre) {
  const auto dossier = std::filesystem::temp_directory_path() / ("rq_modele_" + std::to_string(::getpid()));
  std::filesystem::remove_all(dossier);
  std::filesystem::create_directories(dossier);
  const std::string d = dossier.string();

  auto titre = Lit(LigneDefaut("TITRE"));
  EXPECT_FALSE(titre->ExistModelNote(d));
  EXPECT_TRUE(titre->SaveModelNote(d, ""));
  EXPECT_FALSE(std::filesystem::exists(titre->GetPathModelNote(d)));
  EXPECT_FALSE(titre->ExistModelNote(d));
  EXPECT_TRUE(titre->SaveModelNote(d, "Grade :\r\nCorps :"));
  EXPECT_TRUE(titre->ExistModelNote(d));
  EXPECT_EQ(titre->GetModelNote(d), "Grade :\r\nCorps :");
  EXPECT_TRUE(titre->SaveModelNote(d, ""));  // le fichier existant est vidé, pas supprimé
  EXPECT_EQ(std::filesystem::file_size(titre->GetPathModelNote(d)), 0u);

  auto reg = Lit(LigneDefaut("REGISTRE_MATRICULE"));
  EXPECT_EQ(reg->GetPathModelNote(d), d + "/REGISTRE_MATRICULE_MODEL.txt");
  EXPECT_TRUE(reg->ExistModelNote(d));  // modèle intégré, sans fichier
  EXPECT_TRUE(reg->SaveModelNote(d, reg->GetModelNote(d)));
  EXPECT_FALSE(std::filesystem::exists(reg->GetPathModelNote(d)));
  EXPECT_TRUE(reg->SaveModelNote(d, "Liste des blessures : aucune"));
  EXPECT_EQ(reg->GetModelNote(d), "Liste des blessures : aucune");
  std::filesystem::remove_all(dossier);
}
