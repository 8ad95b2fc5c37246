// TBufferisationArbChrono : le cache des personnes d'un dossier ouvert.
//
// Numéro -> TPerson possédée, 10 000 places. Plein, il chasse le plus petit numéro avant
// d'en ajouter un, même si ce numéro vient d'être lu : le plus petit, pas le plus ancien.
// Le cache appartient au TFicPersons du dossier et sert le fil de ce dossier, sans verrou.
// Une personne trouvée ne coûte aucun accès disque.
//
// Deux formes en cache. Une personne seulement lue y tient par son enregistrement brut (644
// octets, et son débordement s'il en a un) : c'est la forme d'un parcours, qui ne coûte que
// la lecture du disque et l'écriture de ces octets, et la mise en forme publique se fait
// directement dans l'objet de l'appelant (LitPersonne) ; la forme publique entière d'une
// personne tient trois fois plus de place, et un parcours d'un million de numéros passerait
// son temps à l'écrire dans une mémoire froide. Une personne demandée par pointeur
// (GetPerson), avec ses listes, ou recopiée par Update tient par un TPerson entier, qui
// l'emporte alors sur le brut.
//
// Un parcours (des numéros absents demandés l'un après l'autre) lit le fichier par blocs de
// 64 enregistrements d'un seul appel : seule la personne demandée entre dans le cache, les
// suivantes attendent dans le bloc, qui ne sert plus dès qu'une fiche a été écrite. Un
// parcours par le cache coûte ainsi moins d'appels au système qu'un parcours sans lui.
//
// La personne chassée prête sa place à la suivante et l'index est une table plate : un
// parcours par le cache n'alloue rien une fois le cache plein. Le pointeur rendu par
// GetPerson ou Update désigne la personne tant qu'elle reste dans le cache ; chassée, son
// objet sert à une autre.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "rqbase/person/gest_pers.h"

namespace rqbase {

class TBufferisationArbChrono : public TCachePersonnes {
 public:
  // Au moins une place : GetPerson rend la personne qu'il vient d'ajouter.
  explicit TBufferisationArbChrono(TFicPersons* fic, size_t capacite = TFicPersons::CapaciteCache);

  // Le cache du fichier, créé au premier appel ; vu par son interface.
  static TCachePersonnes& De(TFicPersons& fic);

  // La personne en cache, ou lue du disque (sans cache) et ajoutée. Un numéro négatif
  // autre que -2 vaut 0.
  TPerson* GetPerson(long no, bool complement) override;
  // La même personne recopiée dans `cible` (numéro, fiche, listes, rappels), sans passer par
  // un objet entier du cache quand elle n'y est que brute.
  void LitPersonne(long no, bool complement, TPerson& cible) override;
  // Plein : le plus petit numéro part d'abord. Le cache prend possession de `personne` ;
  // un double du même numéro est remplacé.
  void AjoutePersonne(TPerson* personne);
  // Recopie `personne` sur son double ; nul si absent ou si le drapeau de la personne
  // l'interdit.
  TPerson* Update(const TPerson& personne, bool forcer = false) override;
  void Delete(long no) override;
  void RazBuffers() override;

  size_t Taille() const { return Nombre; }
  bool Contient(long no) const { return Cherche(no) != kAbsent; }

 private:
  static constexpr int32_t kAbsent = -1;
  // Une case de l'index : un numéro et sa place dans Places (kAbsent : case libre).
  struct TCase {
    long No = 0;
    int32_t Place = kAbsent;
  };

  // L'index : adressage ouvert, sondage linéaire, au plus à moitié plein.
  size_t Ideale(long no) const;
  int32_t Cherche(long no) const;
  void Insere(long no, int32_t place);
  // Retire `no` de l'index ; rend sa place, ou kAbsent.
  int32_t Retire(long no);
  // Retire le plus petit numéro présent ; rend sa place (la personne y reste, pour resservir).
  int32_t ChassePlusPetit();
  // Une place libre ou kAbsent s'il faut en créer une.
  int32_t PlaceLibre();
  // Une entrée du cache : le brut tel que lu, et la personne entière quand elle existe.
  struct TEntree {
    TPerson::TEnreg Brut{};
    std::unique_ptr<TExtPerson::TEnreg> Ext;
    std::unique_ptr<TPerson> Complet;
    bool Lisible = false;  // le brut a été lu (sinon la fiche se lit vide)
    bool Foireux = false;  // le brut s'est lu comme une fiche foireuse
  };
  // La place du numéro, lue du disque (brute) et ajoutée s'il est absent.
  int32_t Trouve(long no);
  // La personne entière de l'entrée, faite du brut au besoin.
  TPerson& Complet(TEntree& e, long no);
  // Rend l'objet entier d'une entrée qui quitte le cache, pour resservir.
  void Libere(TEntree& e);
  // Note `no` dans le tas des numéros (refait quand les numéros oubliés l'encombrent).
  void NoteNumero(long no);
  // L'enregistrement brut de `no` (TPerson::LitBrut), tiré du bloc de la lecture anticipée
  // quand `no` suit le numéro lu avant lui.
  bool LitBrut(long no, TEntree& e);

  TFicPersons* Fic;
  size_t Capacite;
  size_t Nombre = 0;
  std::vector<TCase> Index;  // taille : puissance de deux, au moins deux fois la capacité
  int Bits = 0;              // log2(taille de l'index)
  std::vector<TEntree> Places;
  std::vector<int32_t> Libres;                    // places rendues par Delete, prêtes à resservir
  std::vector<std::unique_ptr<TPerson>> Reserve;  // objets entiers rendus, prêts à resservir
  // Tas (le plus petit en tête) des numéros ajoutés. Un numéro oublié (Delete) y reste
  // jusqu'à ce qu'il remonte en tête : il est alors passé. Tout numéro présent y est.
  std::vector<long> Tas;
  // Tant que les numéros arrivent en ordre croissant (un parcours), Tas est une suite rangée
  // lue à partir de DebutTas : ni tas à refaire ni à défaire. Au premier numéro hors de l'ordre,
  // la suite (déjà un tas) devient le tas.
  bool TasTrie = true;
  size_t DebutTas = 0;
  // La lecture anticipée : les BlocNombre enregistrements à partir de BlocDebut, lus entiers
  // d'un appel, valables tant que le fichier compte BlocEcritures écritures.
  static constexpr long kBloc = 64;
  std::vector<TPerson::TEnreg> Bloc;
  long BlocDebut = 0, BlocNombre = 0;
  uint64_t BlocEcritures = 0;
  long Precedent = 0;  // le dernier numéro lu du disque
};

}  // namespace rqbase
