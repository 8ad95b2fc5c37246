// TPerson : une personne, lue de son enregistrement de 644 octets (et de son débordement),
// avec ses liens de famille.
//
// Objet court, fait sur la pile par l'appelant, qui le possède. Il tient la forme en
// mémoire TEnregPublic : tables complètes de 150 conjoints et 150 enfants, que
// l'enregistrement principal (10 et 30) et l'enregistrement .exp se partagent sans que
// rien au-dessus de TransfertVersPublic/TransfertDepuisPublic ne le voie.
//
// Numéros réservés : 0 aucune personne ; -2 l'en-tête (lisible et inscriptible, jamais
// mis en cache) ; -3 garde le numéro de l'objet (NouvelleFiche(-3) en prend un neuf).
// Données abîmées : une fiche jugée foireuse se lit comme une personne supprimée vide.
// Dossier en erreur ou en lecture seule : Lecture rend une fiche vide, Enregistrement
// ne fait rien.
//
// Les listes d'événements et de champs simples, les index de noms et les numéros de
// Sosa arrivent avec leurs couches ; leurs étapes sont marquées dans gest_pers.cpp.
#pragma once
#include <NTL/ZZ.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {

class TContexteDossier;

class TPerson {
 public:
  using TEnreg = TEnregPersonne;
  static constexpr int NbConjoints = 150;
  static constexpr int NbEnfants = 150;
  static constexpr int NbLiens = 100;

  struct TEnregPublic {
    uint8_t ChpsSimpleLoaded;
    uint8_t Reserve1[3];
    int32_t LiensChpsSimple[NbLiens];
    uint8_t EvenLoaded;
    uint8_t Reserve2[3];
    int32_t LiensEvenement[NbLiens];
    uint8_t CitationLoaded;
    uint8_t Reserve3[3];
    int32_t LiensCitation[NbLiens];
    char Type;
    char Supprime;
    char Sexe;
    TLienPers Pere;
    TLienPers Mere;
    TLienConj Conjoints[NbConjoints];
    TLienPers Enfants[NbEnfants];
    char Nom[101];
    char Prenoms[71];
    uint8_t PrenomUsuel;
    int32_t Index[10];
    int32_t Note;
    int32_t Extension;
    int32_t Long1;
    int32_t Long2;
    int32_t NoGeneration;  // dernier des champs simples : Raz les vide d'un coup jusqu'ici
    std::string Relation;
    NTL::ZZ Sosa;
    std::string NoDescendance;
    std::string RangConjParent;

    TEnregPublic() { Raz(); }
    // Tout à zéro, type 'P', sexe '?', numéro de descendance "!!--!!" (pas encore calculé).
    void Raz();
  };

  using TRappel = std::function<void(TPerson&)>;

  // Un numéro > 0 ou -2 est lu (Lecture) ; tout autre donne une fiche vide (NouvelleFiche(0)).
  TPerson(TFicPersons* fic, long no = 0, bool complement = false, int typeLecture = 0, bool viaBuffer = false);
  TPerson(const TPerson& autre);
  explicit TPerson(const TPerson* autre) : TPerson(*autre) {}
  TPerson& operator=(const TPerson& autre) {
    CopyPerson(autre);
    return *this;
  }
  ~TPerson();

  void CopyPerson(const TPerson& autre);
  // Vide la fiche (type 'P') ; -3 prend un numéro neuf du fichier (tables de liens
  // alors tenues pour chargées), sinon l'objet prend `no`.
  void NouvelleFiche(long no);

  // -3 garde le numéro. `viaBuffer` passe par le cache (sauf 0 et -2).
  void Lecture(long no, bool complement = false, int typeLecture = 0, bool viaBuffer = false);
  // `fic`, s'il est donné, remplace le fichier pour cet appel (transfert entre dossiers).
  // Rien pour le numéro 0, un dossier en lecture seule ou en erreur.
  void Enregistrement(long no = -3, TFicPersons* fic = nullptr, bool sansChamps = false, bool sansIndex = false,
                      bool inutilise = true, bool majIndex = true);
  // Recopie la personne sur son double du cache, si le drapeau le permet.
  void UpdateBufferPerson(bool forcer = false);
  void LibereMemoire();
  // Oublie la personne dans le cache et vide ses trois tables de liens.
  void ViderCachesChps();

  // Juge un enregistrement qui vient d'être lu : vrai s'il est foireux.
  bool EnregFoireux(const TEnreg& enreg) const;
  void TransfertVersPublic(const TEnreg& enreg, bool force = false);
  void TransfertVersPublic(const TExtPerson::TEnreg& enreg, bool force = false);
  void TransfertDepuisPublic(TEnreg& enreg) const;
  void TransfertDepuisPublic(TExtPerson::TEnreg& enreg) const;

  // --- Questions sur les liens (sans effet de bord) ---
  bool IsParentOf(long& no, int& rang) const;
  bool IsParentOf(long& no) const;
  int FirstNullChild() const;
  int CompteNbConjoint() const;
  int CompteNbConjointHors(long no) const;
  int GetFirstNoConj() const;
  int CompteNbEnfant(long autreParent = 0) const;
  int RetourneRgConj(long no) const;
  int RetourneRgEnf(long no) const;
  int RetourneRgChpsSimple(long no) const;
  int RetourneRgEven(long no) const;
  TLienConj& RechRefConj(long no);
  TLienPers& RechRefEnf(long no);
  long NoAutreParent(long no) const;
  bool AucunLien() const;
  bool NomEtPrenomVides() const;
  bool FicheVide() const;
  bool FicheCassee() const;
  int RgSexe() const;
  char NotSex() const;
  std::string RetChnMF(const std::string& m, const std::string& f) const { return EstFemme() ? f : m; }
  bool EstHomme() const { return Enreg.Sexe == 'M'; }
  bool EstFemme() const { return Enreg.Sexe == 'F'; }
  void GetVectorEnfants(std::vector<long>& enfants) const;
  void SetVectorEnfants(const std::vector<long>& enfants);

  // --- Modifications de la fiche seule ---
  void SetNom(const std::string& nom);
  void SetPrenoms(const std::string& prenoms);
  void SetSexe(char sexe) { Enreg.Sexe = sexe; }
  void SetPersonne() { Enreg.Type = 'P'; }
  // Position (0..149) du conjoint, ajouté à la première place vide ; -1 si tout est pris ;
  // rien pour 0. L'événement d'union (`avecEvenement`) vient avec les événements.
  int AjouteConj(long no, bool avecEvenement = false, TPerson* conjoint = nullptr);
  void SetLienConj(const TLienConj& lien);
  // Index de l'enfant ajouté (-1 si les 150 places sont prises) ; `conjoint` -1 : pas de
  // reclassement. Voir gest_pers.cpp pour la remontée.
  int AjouteEnf(long no, long conjoint);
  void SupprimeConjoint(long no, bool* change);
  void SupprimeEnfant(long no, bool* change);
  bool RecompacteConjoint();
  bool RecompacteEnfant();
  bool DeplaceEnfantVersAine(long no);
  bool DeplaceEnfantVersBenjamin(long no);
  bool DeplacerConjVersPos(long no, int pos);
  // Voulu : travaille sur la table des conjoints, comme DeplacerConjVersPos, avec le
  // compte des enfants pour bornes ; la table des enfants reste telle quelle.
  bool DeplacerEnfantVersPos(long no, int pos);
  // Efface père, mère, conjoints et enfants au-delà du compte du fichier, sans tasser.
  void RepareFiche();

  bool IsPersonne() const { return Enreg.Type == 'P' || Enreg.Type == ' ' || Enreg.Type == 0; }
  bool IsTemoin() const { return Enreg.Type == 'T' || Enreg.Type == ' ' || Enreg.Type == 0; }
  bool FicheSupprimee() const { return Enreg.Supprime == 'O'; }

  long No() const { return Numero; }
  TFicPersons* Fic() const { return Fichier; }
  TContexteDossier* Gest() const { return Fichier ? Fichier->Gest() : nullptr; }

  TEnregPublic Enreg;
  bool MajBuffer = true;  // permet à UpdateBufferPerson de rafraîchir le double du cache
  std::set<long> Numeros;  // vidé à chaque lecture, laissé à la couche des champs
  TRappel OnMajDateModif, OnSupprPere, OnSupprMere, OnSupprConjoint, OnSupprEnfant, OnSupprCitation, OnRappel7,
      OnSupprEvenCouple;

 private:
  void LectureDisque(bool complement);
  void CopieRappels(const TPerson& autre);
  TFicPersons* Fichier;
  long Numero = 0;
};

}  // namespace rqbase
