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
// La personne possède ses deux listes (événements, champs simples), chargées à la demande
// depuis la base (champs_personne.cpp). Les opérations qui passent par d'autres personnes
// (liens, suppression, réparations) sont dans liens_personne.cpp, les tampons de date et
// l'identifiant d'échange dans estampilles.cpp. Les numéros de Sosa arrivent avec leur
// fichier ; leurs étapes sont marquées là où elles tombent.
//
// Invariants tenus par toute opération publique qui écrit : un parent a l'enfant dans ses
// enfants ; un conjoint a la personne dans ses conjoints ; les deux parents d'un enfant sont
// conjoints l'un de l'autre ; aucun lien vers soi ni au-delà du fichier ; les rangs d'union
// des listes suivent la table des conjoints.
#pragma once
#include <NTL/ZZ.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "rqbase/person/vecteur_tv.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {

class TContexteDossier;
class TChpCs;
class TEquivChpCs;
class TVoisinsPersonne;
class TModuleBDD;

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
    // Première place vide, sauf si l'événement y est déjà ou si la table est pleine.
    bool AjoutLienCitation(long noEven);
    // Retire l'événement en remontant les suivants ; la place après le dernier est nulle.
    bool SupprLienCitation(long noEven);
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

  // Les deux listes : nulles tant qu'elles ne sont pas chargées.
  TVectorTV<TEvenementTV>* Evens() const { return Listes.Evens.get(); }
  TVectorTV<TChpsSimpleTV>* Chps() const { return Listes.Chps.get(); }
  TListesChps& ListesChps() { return Listes; }
  void CopyChamps(const TPerson& autre);

  // La lecture du disque en deux temps, pour le cache : l'enregistrement tel qu'il est sur le
  // disque et son débordement (nul s'il n'en a pas ou si son numéro est hors du fichier .exp),
  // puis sa mise en forme dans l'objet, qui prend le numéro `no`. LitBrut rend false quand il
  // n'y a rien à lire (numéro 0 ou hors du fichier, dossier en erreur, lecture ratée) ;
  // AppliqueBrut rend false pour un enregistrement foireux (lu comme une fiche supprimée vide).
  static bool LitBrut(TFicPersons* fic, long no, TEnreg& brut, std::unique_ptr<TExtPerson::TEnreg>& ext);
  // Comme LitBrut, l'enregistrement venu entier d'une lecture groupée faite avant : mêmes
  // refus, même drapeau d'erreur du dossier.
  static bool LitBrutDeja(TFicPersons* fic, long no, const TEnreg& lu, TEnreg& brut,
                          std::unique_ptr<TExtPerson::TEnreg>& ext);
  bool AppliqueBrut(long no, const TEnreg& brut, const TExtPerson::TEnreg* ext);
  // Une fiche vide du numéro `no`, sans rappels : ce que donne un enregistrement illisible.
  void FicheIllisible(long no);
  void OublieRappels();

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
  // Par l'estimation des dates de vie (estimation_personne.cpp) ; -1.0 : aujourd'hui, où un
  // décès noté, même sans date, suffit. Présumée vivante sauf morte à coup sûr avant la date
  // ou née à coup sûr après elle.
  bool EstPresumeVivante(float date = -1.0f);
  // Un décès noté, ou un décès estimé au plus tard avant aujourd'hui.
  bool IsDeadToday();

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

  // ===== Opérations qui passent par les autres personnes (liens_personne.cpp) =====
  // `choix` nul : tout, la personne étant supprimée (ses propres liens restent dans sa fiche).
  // Sinon choix[0] père, choix[1] mère, choix[2 + i] conjoint i, choix[2 + nbConjoints + i]
  // enfant i ; retirer un conjoint qui reste l'autre parent d'un enfant gardé lève ERqBase
  // avant toute écriture. La personne est enregistrée à la fin.
  void SupprimeLien(bool* choix = nullptr, bool inutilise1 = false, bool inutilise2 = false);
  void SupprimeLienParent(bool pere);
  // Les trois briques suivantes changent et enregistrent l'autre personne, et remettent `no`
  // à 0 ; la personne sur laquelle elles tournent n'est ni tassée ni enregistrée.
  // Sur l'enfant, avec le numéro d'un parent.
  void SupprimeLienEnfant(long& no);
  // Sur la personne, avec le numéro d'un conjoint.
  void SupprimeLienConjoint(long& no, bool garderChamps = false);
  // Sur un parent, avec le numéro d'un enfant.
  void SupprimeLienPereMere(long& no, bool inutilise = false);
  void Suppression(bool anonymiser);
  void RestaurationData();
  // L'ordre habituel des conjoints (date d'union) et des enfants (date de naissance).
  void EnregClassementEnfConj(bool avecChamps);
  bool IsCouplesHomosexuel() const;
  // Après un changement de sexe ; vrai sauf si l'utilisateur annule.
  bool GestionCoupleHomoSexuel(char ancienSexe, int* reponse);
  // Réponse connue d'avance : 6 oui, 7 non, autre rien.
  void GestionCoupleHomoSexuel(int reponse);
  bool InverserPereEtMereDesEnfants(std::set<long>* faits);
  void InverserSexeConjoints(std::set<long>* faits, std::set<long>* enfants);
  // Réparations : vrai si quelque chose a changé (VerifLienSysmetrique : les liens de la
  // personne elle-même, qu'elles n'enregistrent pas). VerifLienSysmetrique ne fait rien sur
  // une fiche supprimée : elle la remettrait chez ses proches.
  bool VerifLienHorsFichier();
  bool VerifLienSysmetrique();
  // Ajoute `n` copies supprimées de la fiche au bout du fichier des personnes.
  void AddPersGhost(int n);

  // ===== Tampons et identifiant d'échange (estampilles.cpp) =====
  void MajDateJourDDMF_DCF(bool creationSeule, const std::string& date = "");
  void MajDateJourDDNOTIF(const TDateTime* date);
  std::string RetourneIdPers(bool creer);
  std::string GenereIdPersUnique();
  bool VerifIdPersOk(const std::string& id);
  void AddOrigineDataChps();

  // ===== Événements et champs simples de la personne (champs_personne.cpp) =====
  // Chargement.
  void LectureComplementaire(int filtreAnnee = 0, bool recharger = false, bool inutilise = false);
  void LectureComplementaireChpsSimple(bool inutilise = false);
  void LectureComplementaireEvenement(int filtreAnnee = 0, bool recharger = false, bool inutilise = false);
  void FiltreEvenApres(int annee) { LectureComplementaireEvenement(annee, true, true); }
  // Les deux listes, chacune chargée seule si elle manque : une liste déjà là, peut-être
  // changée et pas encore enregistrée, n'est pas relue.
  void ChargeListes();
  // La base du dossier si elle est ouverte, nul sinon.
  TModuleBDD* BaseOuverte() const;
  void NouvelleFicheComplementaire();
  void NouvelleFicheComplementaireChpsSimple();
  void NouvelleFicheComplementaireEvenement();
  // Une place des tables de liens ; au-delà de 99, un entier nul partagé.
  int32_t& LienEvenement(int i);
  int32_t& LienChpsSimple(int i);
  // Charge la table des citations de la base au premier usage.
  int32_t& LienCitation(int i);
  bool IsCitee();
  bool CanAddEvent() const { return Enreg.LiensEvenement[NbLiens - 1] == 0; }

  // Lecture par rang (à partir de 1 ; 0 ou hors bornes : false).
  int GetNbInfoEven();
  int GetNbChpsSimple();
  bool EvenNo(int rg, TEvenement::TEnreg* e);
  bool ChpsSimpleNo(int rg, TChpsSimple::TEnreg* c);
  // Par numéro d'enregistrement ; rend le rang, 0 si absent.
  int EvenNoEnreg(long no, TEvenement::TEnreg* e);
  int ChpsSimpleNoEnreg(long no, TChpsSimple::TEnreg* c);
  // Rang (à partir de 1) du premier élément de ce libellé, et de ce conjoint s'il n'est pas
  // nul, cherché après le rang `apres` ; 0 si aucun.
  int GetRgEven(const std::string& libelle, long conjoint = 0, int apres = 0);
  int GetRgChpsSimple(const std::string& libelle, long conjoint = 0, int apres = 0);
  int GetRgEvenByID(long id);
  int GetRgChpsSimpleByID(long id);
  bool IsExistEven(const std::string& libelle, long conjoint = 0) { return GetRgEven(libelle, conjoint) > 0; }
  bool IsExistChpsSimple(const std::string& libelle, long conjoint = 0) {
    return GetRgChpsSimple(libelle, conjoint) > 0;
  }
  int CountEvents(const std::string& libelle);
  // Le n-ième (à partir de 0) événement de ce libellé.
  bool GetEvent(TEvenement& e, unsigned n, const std::string& libelle);
  bool IsChpsExiste(const std::string& libelle);

  // Modifications. AjoutEven : false à la limite des 100 événements (message montré).
  bool AjoutEven(TEvenement* e, bool nouveau, bool surConjoint, bool enregistrer);
  // Rend le numéro de l'événement neuf, 0 s'il n'a pas pu être ajouté.
  long AjoutEvenVierge(const std::string& libelle, long conjoint, TPerson* conj);
  bool MajEvenNo(int rg, const TEvenement::TEnreg* e);
  bool SupprEvenNo(int rg, bool enregistrer);
  bool ChangeEvenTV(int rg, const TEvenementTV& e);
  // À sa place habituelle, s'il n'y est pas déjà.
  void InsertEvenTV(const TEvenementTV& e);
  // L'enregistrement de l'événement libéré de ses liens (conjoint, personnes citées, sources,
  // illustrations) ; à appeler après SupprEvenNo.
  void SupprimeEvenement(long no, bool surConjoint);
  bool AjoutChpsSimple(const TChpsSimple::TEnreg* rec, long conjoint);
  bool AjoutChpsSimpleVierge(const std::string& libelle, long conjoint);
  long AjoutChpsSimpleViergeImmediatDisque(const std::string& libelle, long conjoint, TPerson* conj);
  long AjoutChpsSimpleImmediatDisque(TChpsSimple::TEnreg& rec, TPerson* conj, bool ecrire);
  bool MajChpsSimpleNo(int rg, const TChpsSimple::TEnreg* c);
  bool SupprChpsSimpleNo(int rg, bool enregistrer);
  bool ChangeChpsSimpleTV(int rg, const TChpsSimpleTV& c);
  void SupprChampsMatchLibelle(const std::string& libelle);
  void RestituerEvenNoEnreg(long no, long conjoint, int pos);
  void RestituerChpsSimpleNoEnreg(long no, long conjoint, int pos);

  // Ordre.
  void ClassementChronoEven(bool inutilise1 = false, bool inutilise2 = false);
  void ClassementTypeEven();
  void MajEvenRgUnion();
  void MajChpsSimpleRgUnion();
  void RecompacterEvenement();
  void TermineRecompacter();

  // Recherche avec équivalents ; rendent le rang (à partir de 1), 0 si rien.
  int InfoPremEven(const std::string& libelle, TEvenement::TEnreg* e, long conjoint = 0, TChpCs** chp = nullptr);
  int RetEvenEquiv(const TEquivChpCs& equiv, TEvenement::TEnreg* e, long conjoint = 0, TChpCs** chp = nullptr,
                   bool exact = false);
  int RetEvenEquiv(const std::string& libelle, TEvenement::TEnreg* e, long conjoint = 0, TChpCs** chp = nullptr,
                   bool exact = false);
  int RetEvenNaissance(TEvenement::TEnreg* e, TChpCs** chp = nullptr, bool exact = false);
  int RetEvenBapteme(TEvenement::TEnreg* e, TChpCs** chp = nullptr, bool exact = false);
  int RetEvenDeces(TEvenement::TEnreg* e, TChpCs** chp = nullptr, bool exact = false);
  int RetEvenInhumation(TEvenement::TEnreg* e, TChpCs** chp = nullptr, bool exact = false);
  int RetEvenUnion(TEvenement::TEnreg* e, long conjoint, TChpCs** chp = nullptr, bool exact = false);
  // Sans charger la personne : la liste si elle est là, la base sinon.
  bool GetEvenNaissance(TEvenement* e, bool exact = false);
  bool GetEvenDeces(TEvenement* e);
  bool GetEvenOuEquivalent(const TEquivChpCs& equiv, TEvenement* e, bool exact = false);
  bool GetEvenUnionOuEquivalent(TEvenement* e, long conjoint, bool exact = false);

  // Professions, événements ou champs simples selon le catalogue du dossier.
  void AjusteChampsProf(const std::string& texte);
  void AjouteProfession(TChpCs* chp, const std::string& texte);
  std::string GetToutesProfession();
  void SuppressionProfession(int rg);

  // Citations : les deux côtés s'écrivent ensemble.
  void AjoutLiensPersCitees(long noEven, const TPersAssociee* tab);
  void MajLiensPersCitees(long noEven, const TPersAssociee* anciens, const TPersAssociee* nouveaux);
  static bool IsInPersAssociee(const TPersAssociee* tab, long no);

  // Portraits : illustrations d'un événement "IMAGE".
  bool AddImage(const std::string& chemin);
  bool AddPortrait(const std::string& chemin, bool siAbsent);
  bool PortraitExists(const std::string& chemin);
  // Rang de l'événement "IMAGE" qui recevra le portrait, 0 si aucun.
  int NoPortrait(const std::string& chemin);
  std::string CheminImagePrioritaire(const std::string& libelle, const TEvenement::TEnreg* e = nullptr);
  int RangEvenDefaut(const std::string& libelle);
  bool SetImageAsDefault(int rang, const std::string& fichier, const std::string& libelle = "IMAGE");

  // Les voisins du dossier (catalogue, lieux, notes) ; nul sans dossier.
  TVoisinsPersonne* Voisins() const;

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
  // Les refus communs aux deux lectures brutes, puis ce qui suit la lecture.
  static bool PeutLireBrut(TFicPersons* fic, long no);
  static bool SuiteLitBrut(TContexteDossier* gest, bool venu, const TEnreg& brut,
                           std::unique_ptr<TExtPerson::TEnreg>& ext);
  void LectureDisque(bool complement);
  void CopieRappels(const TPerson& autre);
  // Position d'insertion d'un événement de ce libellé selon l'ordre habituel.
  int PositionEven(const std::string& libelle);
  TFicPersons* Fichier;
  long Numero = 0;
  TListesChps Listes;
};

}  // namespace rqbase
