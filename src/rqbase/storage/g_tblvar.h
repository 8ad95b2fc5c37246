// TTableTV : table en mémoire d'éléments de taille variable.
//
// Les éléments sont sérialisés les uns derrière les autres dans une seule zone de
// texte ; un index de décalages 32 bits les range. Une table de milliers d'entrées
// coûte deux allocations, se trie en échangeant des décalages, et s'écrit dans un
// flux persistant en deux blocs. Les rangs comptent à partir de 0.
//
// TEltBaseTV est la base des éléments : Ecrit sérialise l'élément à un pointeur et
// rend la nouvelle fin ; Lit le relit depuis un pointeur, `taille` étant le nombre
// d'octets lisibles à partir de là (un élément ne lit jamais au-delà). EltCmp doit
// être un ordre cohérent (deux éléments égaux à un troisième sont égaux entre eux,
// a < b si et seulement si b > a) : le tri et les recherches reposent dessus.
//
// Capacités et mémoire. Les capacités de l'index et de la zone de texte sont celles
// que le format enregistre et que la croissance fait avancer ; la mémoire réellement
// prise suit le contenu (elle double au besoin sans dépasser la capacité), si bien
// qu'une table relue d'un flux ne coûte que ce que le flux contient.
#pragma once
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "rqbase/platform/progression.h"
#include "rqbase/util/flux.h"

namespace rqbase {

class TEltBaseTV {
 public:
  virtual ~TEltBaseTV() = default;
  virtual char* Ecrit(char* p) const = 0;
  virtual void Lit(const char* p, long taille) = 0;
  virtual int GetTaille() const = 0;     // octets qu'écrit Ecrit
  virtual int GetTailleMax() const = 0;  // borne de GetTaille pour tout élément du genre
  virtual int EltCmp(const TEltBaseTV& autre) const = 0;
  // Les deux comparaisons plus lâches que rapporte la recherche approchée ;
  // par défaut, l'égalité de EltCmp.
  virtual bool EgalPremier(const TEltBaseTV& autre) const { return EltCmp(autre) == 0; }
  virtual bool EgalApproche(const TEltBaseTV& autre) const { return EltCmp(autre) == 0; }

  bool operator<(const TEltBaseTV& a) const { return EltCmp(a) < 0; }
  bool operator<=(const TEltBaseTV& a) const { return EltCmp(a) <= 0; }
  bool operator==(const TEltBaseTV& a) const { return EltCmp(a) == 0; }
  bool operator!=(const TEltBaseTV& a) const { return EltCmp(a) != 0; }

  long Decalage = 0;  // position de l'élément dans la zone de texte

  // Écriture dans un pointeur qui avance.
  static void EcritCar(char c, char*& p) { *p++ = c; }
  static void EcritMemoire(const void* source, size_t n, char*& p);
  static void EcritChn(const std::string& texte, char*& p);  // les octets puis un zéro
  // Lecture bornée : au-delà de `fin`, on lit des zéros et un texte s'arrête.
  // Écrites ici pour que chaque élément les reçoive en ligne : le tri d'une grande
  // table en appelle des dizaines de millions.
  static char LitCar(const char*& p, const char* fin) { return p < fin ? *p++ : '\0'; }
  static void LitMemoire(void* destination, size_t n, const char*& p, const char* fin) {
    if (p < fin && size_t(fin - p) >= n) {
      std::memcpy(destination, p, n);
      p += n;
      return;
    }
    const size_t lu = p < fin ? size_t(fin - p) : 0;
    if (lu > 0) std::memcpy(destination, p, lu);
    std::memset(static_cast<char*>(destination) + lu, 0, n - lu);
    p += lu;
  }
  static std::string LitChn(const char*& p, const char* fin) {
    const char* debut = p;
    while (p < fin && *p) ++p;
    std::string s(debut, p);
    if (p < fin) ++p;  // le zéro final
    return s;
  }
};

class TTableTV {
 public:
  // Appelé après un déplacement d'élément dans l'index : (ancien rang, nouveau rang).
  using TRappel = std::function<void(long ancien, long nouveau)>;

  TTableTV(long initial = 100, long croissance = 50, int tailleMoyenne = 20);
  explicit TTableTV(const TTableTV* autre);
  TTableTV(const TTableTV& autre) = default;
  TTableTV& operator=(const TTableTV& autre) = default;

  void Raz();
  void CreateTable();
  long GetNbElt() const { return NbElt; }

  long Ajoute(const TEltBaseTV& elt);
  long AjouteClasse(const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel = nullptr);
  void Insere(long rang, const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel = nullptr);
  long ChangeClasse(long rang, const TEltBaseTV& elt, TEltBaseTV& travail, const TRappel& rappel = nullptr);
  void Change(long rang, const TEltBaseTV& elt, TEltBaseTV& travail);
  void Supprime(long rang, TEltBaseTV& travail);
  void Echange(long a, long b);
  // Fait pointer l'entrée `rang` sur le décalage déjà porté par `elt`.
  void ChangePtr(long rang, const TEltBaseTV& elt);
  // false hors des bornes (l'élément n'est pas touché).
  bool Lit(long rang, TEltBaseTV& elt) const;

  // Rang d'un élément égal, ou -1 ; avec `approche`, le rang de la recherche approchée.
  long RechercheDicoth(const TEltBaseTV& elt, TEltBaseTV& travail, bool approche = false, long dernier = -1) const;
  void RechercheDichotomiqueApprochee(long dernier, long& pos, bool* memePremier, TEltBaseTV& travail,
                                      const TEltBaseTV& elt, TEltBaseTV& travail2, bool* trouve) const;

  // Tri Shell de l'index (instable : l'ordre des éléments égaux est celui que donnent
  // ses passes). La barre a une position par écart ; l'abandon, lu entre deux écarts,
  // laisse l'index tel que la dernière passe l'a mis. Lève ERqBase si la mémoire de
  // travail (environ 16 octets par entrée) manque ; l'index n'a alors pas changé.
  void Classement(TEltBaseTV& travail, TEltBaseTV& travail2, TProgression* progression = nullptr);
  void TriShell(long premier, long dernier, TEltBaseTV& travail, TEltBaseTV& travail2,
                TProgression* progression = nullptr);
  // Réécrit la zone de texte sans les trous laissés par Change et Supprime.
  void ReorganiseTableChn();
  // Les octets de l'élément de rang `rang`, sous la forme qu'Ecrit leur a donnée, et combien
  // sont lisibles à partir de là ; nul hors des rangs. Valables jusqu'au prochain ajout.
  const char* Octets(long rang, long* lisibles = nullptr) const;
  // Range les entrées dans l'ordre donné : `ordre[i]` est le rang actuel de l'entrée qui
  // prend le rang i. Un classement fait dehors sur les octets (sans relire chaque élément à
  // chaque comparaison) s'applique ainsi. false, rien de changé, si `ordre` n'est pas une
  // permutation des rangs.
  bool Ordonne(const std::vector<int32_t>& ordre);

  void Sauvegarde(opstream& flux) const;
  // false (table vide, flux en échec) si le flux est court ou tient des comptes
  // incohérents. Les comptes sont confrontés aux octets restants avant toute
  // allocation : la mémoire prise est celle du contenu, quelles que soient les
  // capacités et le pas de croissance enregistrés.
  bool Restauration(ipstream& flux, int version);

  long TailleUtilisee() const { return Utilise; }
  long CapaciteIndex() const { return CapIndex; }
  long CapaciteChn() const { return CapChn; }
  long PasCroissance() const { return Croissance; }
  long NombreInitial() const { return Initial; }
  int GetTailleMoyenne() const { return TailleMoyenne; }
  // Octets réellement réservés pour l'index et la zone de texte.
  size_t MemoireReservee() const { return Index.capacity() * sizeof(int32_t) + Chn.capacity(); }

 private:
  void CapacitesInitiales();  // ce que CreateTable fait des capacités, sans allouer
  void AggrandiTableIndex();
  void AggrandiTableChn(const TEltBaseTV& elt);
  long Ecrit(const TEltBaseTV& elt);  // sérialise à la fin de la zone, rend le décalage
  void DeplaceIndex(long de, long vers);
  void LitDecalage(int32_t decalage, TEltBaseTV& elt) const;
  // Les entrées de [premier, premier + n) classées par EltCmp (voir le .cpp).
  std::vector<uint64_t> ClasseParFusion(long premier, long n, TEltBaseTV& a, TEltBaseTV& b) const;

  long Initial;
  long Croissance;
  long NbElt = 0;
  long Utilise = 0;
  int TailleMoyenne;
  long CapIndex = 0;
  std::vector<int32_t> Index;  // au moins NbElt entrées ; au plus CapIndex
  long CapChn = 0;
  std::vector<char> Chn;  // au moins Utilise octets ; au plus CapChn
};

// Pointeurs et références de flux persistant : un octet de présence puis la table.
void writePtr(opstream& flux, const TTableTV* table);
void writeRef(opstream& flux, const TTableTV& table);
// readPtr rend nullptr pour un pointeur absent ou un flux en échec ; l'appelant possède la table.
TTableTV* readPtr(ipstream& flux, int version);
bool readRef(ipstream& flux, TTableTV& table, int version);

}  // namespace rqbase
