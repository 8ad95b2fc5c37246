// Les façades des événements : dans un dossier de 2009, les anciens fichiers lus octet par
// octet (enregistrements écrits ici aux décalages de leur format, pas par les structures du
// code) sans jamais rien écrire ni créer ; dans un dossier actuel, la base seule.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "dossier_essai.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_evens.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;
using essai::TDossierTemp;

// Un enregistrement de `taille` octets rempli champ par champ.
struct TOctets {
  explicit TOctets(size_t taille) : Octets(taille, '\0') {}
  TOctets& Entier(size_t decalage, int32_t v) {
    std::memcpy(&Octets[decalage], &v, 4);
    return *this;
  }
  TOctets& Texte(size_t decalage, const std::string& t) {
    std::memcpy(&Octets[decalage], t.data(), t.size());
    return *this;
  }
  TOctets& Octet(size_t decalage, char c) {
    Octets[decalage] = c;
    return *this;
  }
  std::string Octets;
};

// Un contexte de dossier d'une année de version choisie (2009 par défaut).
class TContexteAnnee : public TContexteDossier {
 public:
  TContexteAnnee(const std::string& prs, int annee, bool lectureSeule) : TContexteDossier(prs, lectureSeule) {
    VersionAnnee = annee;
  }
};

class FacadesAnciennes : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(Temp.Dossier());
    // .evn : deux événements ; le premier déborde dans .evx (enregistrement 1).
    std::string evn = TOctets(204).Entier(24, 2).Octets;
    evn += TOctets(204)
               .Texte(0, "NAISSANCE")
               .Entier(24, 7)
               .Entier(28, 0)
               .Texte(32, "<")
               .Octet(35, 'G')
               .Texte(36, "12/03/1850")
               .Entier(48, 4)
               .Texte(52, "La Roche")
               .Entier(104, 9)
               .Entier(108, 31)
               .Entier(112, 12)
               .Octet(116, 'A')
               .Entier(120, 3)
               .Entier(124, 5)
               .Entier(176, 21)
               .Entier(180, 22)
               .Entier(184, 41)
               .Entier(196, 44)
               .Entier(200, 1)
               .Octets;
    evn += TOctets(204).Texte(0, "MARIAGE").Entier(24, 8).Entier(28, 7).Octet(35, 'R').Texte(36, "01/VEND/05").Octets;
    essai::Ecrit(Temp.Dossier() + "/Essai.evn", evn);
    std::string evx = TOctets(420).Entier(0, 1).Octets;
    evx += TOctets(420)
               .Entier(0, 1)
               .Texte(4, "Fils de Jean")
               .Entier(108, 13)            // cinquième personne citée
               .Entier(108 + 15 * 16, 14)  // vingtième
               .Entier(364, 23)            // troisième illustration
               .Entier(392, 30)            // dixième
               .Entier(396, 45)            // cinquième source
               .Entier(416, 50)            // dixième
               .Octets;
    essai::Ecrit(Temp.Dossier() + "/Essai.evx", evx);
    // .chs : une profession, puis une donnée de 102 caractères (abîmée).
    std::string chs = TOctets(132).Entier(124, 2).Octets;
    chs += TOctets(132).Texte(0, "PROFESSION").Texte(21, "Laboureur").Entier(124, 7).Octets;
    chs += TOctets(132).Texte(0, "TITRE").Texte(21, std::string(102, 'x')).Entier(124, 8).Entier(128, 7).Octets;
    essai::Ecrit(Temp.Dossier() + "/Essai.chs", chs);
    std::string src = TOctets(336).Entier(0, 1).Octets;
    src += TOctets(336).Entier(0, 1).Texte(4, "Acte").Texte(35, "Registre paroissial de Vouvant").Octets;
    essai::Ecrit(Temp.Dossier() + "/Essai.src", src);
    // .ill : le compte est la première ligne d'un texte.
    std::string ill = TOctets(268).Texte(8, "1\nreste").Octets;
    ill += TOctets(268).Entier(0, 1).Entier(4, 77).Texte(8, "Images\\acte.jpg").Octets;
    essai::Ecrit(Temp.Dossier() + "/Essai.ill", ill);
  }

  TDossierTemp Temp;
};

TEST_F(FacadesAnciennes, EvenementEtSonDebordementLusOctetParOctet) {
  const essai::TInstantane avant = essai::Instantane(Temp.Dossier());
  TContexteAnnee ctx(Temp.Prs(), 2009, false);
  TFicExtEvens ext(&ctx);
  TFicEvens evens(&ctx, nullptr);
  evens.Ext = &ext;
  ASSERT_TRUE(evens.EstAncien());
  EXPECT_EQ(evens.GetNbEnreg(), 2);
  EXPECT_EQ(ext.GetNbEnreg(), 1);

  TEvenement ev;
  ev.Enreg.No = 1;
  ASSERT_TRUE(evens.LectureEven(&ev));
  const TEvenement::TEnreg& e = ev.Enreg;
  EXPECT_EQ(e.No, 1);
  EXPECT_EQ(e.Libelle, "NAISSANCE");
  EXPECT_EQ(e.NoPersA, 7);
  EXPECT_EQ(e.Date.GetActe(), "<");
  EXPECT_EQ(e.Date.GetCalendrier(), 'G');
  EXPECT_EQ(e.Date.GetDate(), "12/03/1850");
  EXPECT_EQ(e.Lieu, 4);
  EXPECT_EQ(e.LieuDit, "La Roche");
  EXPECT_EQ(e.Note, 9);
  EXPECT_EQ(e.NoIllustrationParDefaut, 31);
  EXPECT_EQ(e.PersAssociees[0].Lien.No, 12);
  EXPECT_EQ(e.PersAssociees[0].Lien.Octet, 'A');
  EXPECT_EQ(e.PersAssociees[0].LienQualite, 3);
  EXPECT_EQ(e.PersAssociees[0].LienParente, 5);
  EXPECT_EQ(e.PersAssociees[4].Lien.No, 13);
  EXPECT_EQ(e.PersAssociees[19].Lien.No, 14);
  EXPECT_EQ(e.Illustrations[0], 21);
  EXPECT_EQ(e.Illustrations[1], 22);
  EXPECT_EQ(e.Illustrations[2], 23);
  EXPECT_EQ(e.Illustrations[9], 30);
  EXPECT_EQ(e.Sources[0], 41);
  EXPECT_EQ(e.Sources[3], 44);
  EXPECT_EQ(e.Sources[4], 45);
  EXPECT_EQ(e.Sources[9], 50);
  EXPECT_EQ(e.Donnee, "Fils de Jean");
  EXPECT_EQ(e.LienExtEven, 1);
  EXPECT_TRUE(e.SourcesChargees && e.IllustrationsChargees && e.PersAssocieesChargees);

  // Hors de 1..compte : vierge, sans lire ni lever le drapeau d'erreur du dossier.
  for (long no : {0L, 3L, -2L}) {
    ev.Enreg.No = no;
    EXPECT_FALSE(evens.LectureEven(&ev));
    EXPECT_EQ(ev.Enreg.No, 0);
    EXPECT_TRUE(ev.Enreg.Libelle.empty());
  }
  EXPECT_FALSE(ctx.EnErreur());
  EXPECT_EQ(evens.ReturnNewNum(), 0);  // sans base, aucun numéro neuf
  EXPECT_TRUE(evens.NoEvenValide(2));
  EXPECT_FALSE(evens.NoEvenValide(3));
  EXPECT_EQ(evens.AnnuleSiInconnu(3), 0);
  EXPECT_EQ(essai::Instantane(Temp.Dossier()), avant);
}

TEST_F(FacadesAnciennes, ParcoursEtRecherchesParPersonne) {
  TContexteAnnee ctx(Temp.Prs(), 2009, true);
  TFicEvens evens(&ctx, nullptr);
  EXPECT_EQ(evens.FindEvenOfPerson(7, "MARIAGE"), 2);  // en B
  EXPECT_EQ(evens.FindEvenOfPerson(7, " NAISSANCE "), 1);
  EXPECT_FALSE(evens.EvenExistsForPerson(8, "NAISSANCE"));
  EXPECT_EQ(evens.FindEvenNaissOfPerson(7, {"BAPTEME", "NAISSANCE"}), 1);
  EXPECT_EQ(evens.FindEvenNaissOfPerson(8), 0);

  TEvenement ev;
  evens.PreProcessSearch();
  ASSERT_TRUE(evens.GetEvenParcours(&ev));
  EXPECT_EQ(ev.Enreg.No, 1);
  ASSERT_TRUE(evens.GetEvenParcours(&ev));
  EXPECT_EQ(ev.Enreg.No, 2);
  EXPECT_EQ(ev.Enreg.Date.GetCalendrier(), 'R');
  EXPECT_FALSE(evens.GetEvenParcours(&ev));
  evens.PostProcessSearch();
  evens.PreProcessSearch("", 8);
  ASSERT_TRUE(evens.GetEvenParcours(&ev));
  EXPECT_EQ(ev.Enreg.Libelle, "MARIAGE");
  evens.PreProcessSearch();
  ASSERT_TRUE(evens.GetEvenParcours(&ev, 1));  // un saut
  EXPECT_EQ(ev.Enreg.No, 2);
  evens.PostProcessSearch();
  EXPECT_FALSE(evens.GetEvenParcours(&ev));  // fermé

  TFicChpsSimple chps(&ctx, nullptr);
  EXPECT_EQ(chps.GetNbEnreg(), 2);
  TChpsSimple c;
  c.Enreg.No = 1;
  ASSERT_TRUE(chps.LectureChpsSimple(&c));
  EXPECT_EQ(c.Enreg.Libelle, "PROFESSION");
  EXPECT_EQ(c.Enreg.Donnee, "Laboureur");
  EXPECT_EQ(c.Enreg.NoPersA, 7);
  ASSERT_TRUE(c.LectureAncien(&chps, 2));
  EXPECT_EQ(c.Enreg.Donnee, "");  // plus de 101 caractères : abîmée, lue vide
  EXPECT_EQ(c.Enreg.NoPersB, 7);
  EXPECT_EQ(chps.FindChpsSimpleOfPerson(7, "TITRE"), 2);
  EXPECT_TRUE(chps.ChpsSimpleExistsForPerson(7, "PROFESSION"));
  chps.PreProcessSearch("TITRE");
  ASSERT_TRUE(chps.GetChpsSimpleParcours(&c));
  EXPECT_EQ(c.Enreg.No, 2);
  EXPECT_FALSE(chps.GetChpsSimpleParcours(&c));

  TFicSources sources(&ctx, nullptr);
  TSource s;
  s.No = 1;
  ASSERT_TRUE(sources.LectureSource(&s));
  EXPECT_EQ(s.NoEven, 1);
  EXPECT_EQ(s.Enreg.Type, "Acte");
  EXPECT_EQ(s.Enreg.Descriptif, "Registre paroissial de Vouvant");
  TFicIllustrations ills(&ctx, nullptr);
  EXPECT_EQ(ills.GetNbEnreg(), 1);  // compte lu de la première ligne du texte
  TIllustration il;
  il.No = 1;
  ASSERT_TRUE(ills.LectureIllustration(&il));
  EXPECT_EQ(il.NoEven, 1);
  EXPECT_EQ(il.Enreg.Chemin, "Images\\acte.jpg");
}

TEST_F(FacadesAnciennes, FichiersAbsentsCoupesOuMenteursSansRienCreer) {
  // Un en-tête qui annonce 1000 événements pour un fichier coupé au milieu du second :
  // le compte s'arrête à ce que le fichier tient.
  std::string evn = essai::Contenu(Temp.Dossier() + "/Essai.evn");
  const int32_t mille = 1000;
  std::memcpy(&evn[24], &mille, 4);
  evn.resize(204 * 2 + 100);
  essai::Ecrit(Temp.Dossier() + "/Essai.evn", evn);
  fs::remove(Temp.Dossier() + "/Essai.evx");
  fs::remove(Temp.Dossier() + "/Essai.src");
  // Un lien symbolique à la place d'un ancien fichier n'est pas suivi.
  fs::remove(Temp.Dossier() + "/Essai.chs");
  fs::create_symlink(Temp.Dossier() + "/Essai.ill", Temp.Dossier() + "/Essai.chs");
  const essai::TInstantane avant = essai::Instantane(Temp.Dossier());

  TContexteAnnee ctx(Temp.Prs(), 2009, false);
  TFicExtEvens ext(&ctx);
  TFicEvens evens(&ctx, nullptr);
  evens.Ext = &ext;
  TFicSources sources(&ctx, nullptr);
  TFicChpsSimple chps(&ctx, nullptr);
  EXPECT_EQ(evens.GetNbEnreg(), 1);
  EXPECT_EQ(ext.GetNbEnreg(), 0);
  EXPECT_EQ(sources.GetNbEnreg(), 0);
  EXPECT_EQ(chps.GetNbEnreg(), 0);
  TEvenement ev;
  ev.Enreg.No = 1;
  ASSERT_TRUE(evens.LectureEven(&ev));  // débordement absent : les quatre premières seules
  EXPECT_EQ(ev.Enreg.Sources[3], 44);
  EXPECT_EQ(ev.Enreg.Sources[4], 0);
  EXPECT_EQ(ev.Enreg.Donnee, "");
  TSource s;
  s.No = 1;
  EXPECT_FALSE(sources.LectureSource(&s));
  EXPECT_FALSE(ctx.EnErreur());
  EXPECT_EQ(essai::Instantane(Temp.Dossier()), avant);
}

// La conversion : dossier de 2009 avec sa base neuve ; les façades lisent les anciens
// fichiers, les numéros neufs viennent de la base, les anciens fichiers ne changent pas.
TEST_F(FacadesAnciennes, ConversionLitLesAnciensFichiersEtNumeroteDansLaBase) {
  TModuleBDD bdd(Temp.Dossier() + "/Essai.adb", "5.90");
  ASSERT_TRUE(bdd.CreateDataBase());
  ASSERT_TRUE(bdd.OpenDataBase());
  const std::string evn = essai::Contenu(Temp.Dossier() + "/Essai.evn");
  TContexteAnnee ctx(Temp.Prs(), 2009, false);
  TFicEvens evens(&ctx, &bdd);
  TFicSources sources(&ctx, &bdd);
  ASSERT_TRUE(evens.EstAncien());
  EXPECT_EQ(evens.GetNbEnreg(), 2);  // le compte du fichier, pas la base
  const long no = evens.ReturnNewNum();
  EXPECT_GT(no, 0);
  EXPECT_TRUE(bdd.IsIdEventExists(no));
  const long ns = sources.ReturnNewNum();
  EXPECT_TRUE(bdd.NoSourceExists(ns));
  EXPECT_EQ(essai::Contenu(Temp.Dossier() + "/Essai.evn"), evn);
}

// Dossier actuel : la façade ne touche aucun fichier, tout va à la base.
TEST(FacadesBase, DossierActuelVersLaBaseSansFichier) {
  TDossierTemp temp;
  fs::create_directories(temp.Dossier());
  // Des anciens fichiers laissés là ne sont pas lus.
  essai::Ecrit(temp.Dossier() + "/Essai.evn", std::string(204 * 2, '\x01'));
  TModuleBDD bdd(temp.Dossier() + "/Essai.adb", "5.90");
  ASSERT_TRUE(bdd.CreateDataBase());
  ASSERT_TRUE(bdd.OpenDataBase());
  TContexteAnnee ctx(temp.Prs(), 2020, false);
  const essai::TInstantane avant = essai::Instantane(temp.Dossier());
  TFicEvens evens(&ctx, &bdd);
  TFicChpsSimple chps(&ctx, &bdd);
  TFicSources sources(&ctx, &bdd);
  TFicIllustrations ills(&ctx, &bdd);
  TFicExtEvens ext(&ctx);
  EXPECT_FALSE(evens.EstAncien() || chps.EstAncien() || sources.EstAncien() || ills.EstAncien() || ext.EstAncien());
  EXPECT_EQ(essai::Instantane(temp.Dossier()), avant);

  const long n1 = evens.ReturnNewNum();
  EXPECT_GT(n1, 0);
  TEvenement ev(&bdd);
  ev.Enreg.No = n1;
  ev.Enreg.SetLibelle("NAISSANCE");
  ev.Enreg.NoPersA = 5;
  ASSERT_TRUE(bdd.SetEvenement(&ev));
  TChpsSimple c(&bdd);
  c.Enreg.SetLibelle("PROFESSION");
  c.Enreg.NoPersA = 5;
  ASSERT_TRUE(bdd.SetChpsSimple(&c));
  EXPECT_EQ(evens.GetNbEnreg(), c.Enreg.No);  // le plus grand numéro des deux sortes
  EXPECT_TRUE(evens.NoEvenValide(n1));
  EXPECT_FALSE(evens.NoEvenValide(c.Enreg.No));  // un champ simple n'est pas un événement
  EXPECT_TRUE(chps.NoChpsSimpleValide(c.Enreg.No));
  EXPECT_EQ(chps.AnnuleSiInconnu(n1), 0);
  EXPECT_EQ(evens.FindEvenNaissOfPerson(5), n1);
  EXPECT_EQ(chps.FindChpsSimpleOfPerson(5, "PROFESSION"), c.Enreg.No);
  TEvenement lu;
  lu.Enreg.No = n1;
  ASSERT_TRUE(evens.LectureEven(&lu));
  EXPECT_EQ(lu.Enreg.Libelle, "NAISSANCE");
  evens.PreProcessSearch("", 5);
  ASSERT_TRUE(evens.GetEvenParcours(&lu));
  EXPECT_EQ(lu.Enreg.No, n1);
  EXPECT_FALSE(evens.GetEvenParcours(&lu));
  evens.PostProcessSearch();

  TSource s(&bdd);
  s.NoEven = n1;
  s.SetType("Acte");
  EXPECT_EQ(sources.GetNbEnreg(), 0);
  const long ns = bdd.AjouterEltTableSource(&s);
  EXPECT_EQ(sources.GetNbEnreg(), ns);
  EXPECT_TRUE(sources.NoSourceValide(ns));
  TIllustration il(&bdd);
  il.SetChemin("Images/a.jpg");
  const long ni = bdd.AjouterEltTableIllustration(&il);
  EXPECT_EQ(ills.GetNbEnreg(), ni);
  TIllustration relue;
  relue.No = ni;
  ASSERT_TRUE(ills.LectureIllustration(&relue));
  EXPECT_EQ(relue.Enreg.Chemin, "Images/a.jpg");
  // Seule la base a changé.
  EXPECT_EQ(essai::Contenu(temp.Dossier() + "/Essai.evn"), std::string(204 * 2, '\x01'));
  EXPECT_FALSE(fs::exists(temp.Dossier() + "/Essai.chs"));
}

}  // namespace
}  // namespace rqbase
