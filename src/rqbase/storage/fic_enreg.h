// Le motif des fichiers d'enregistrements d'un dossier, écrit une fois.
//
// Un fichier d'enregistrements est plat : des enregistrements de taille fixe numérotés
// à partir de 1, l'enregistrement N à l'octet N × taille (sur 64 bits), l'enregistrement 0
// étant l'en-tête dont le premier mot de 32 bits est le compte des numéros donnés.
// Numéros réservés : -2 désigne l'en-tête (octet 0), -3 garde le numéro de l'objet.
//
// Contrat commun :
//  - une lecture qui rend zéro octet (ou échoue) lève le drapeau d'erreur du dossier,
//    une lecture réussie le baisse (le drapeau est affecté, pas cumulé) ; une lecture
//    courte n'est pas un échec, la fin manquante reste à zéro ;
//  - une écriture est abandonnée sans bruit si le dossier est en lecture seule ou en
//    erreur ; une écriture ratée ou incomplète lève le drapeau d'erreur et l'échec
//    d'écriture du dossier, qui ne retombe pas ;
//  - un numéro neuf (ReturnNewNum) ne monte d'abord que le compte en mémoire : l'en-tête
//    qui le couvre s'écrit juste après l'enregistrement lui-même. Ainsi le compte sur le
//    disque ne couvre jamais un enregistrement qui n'y est pas ; une panne entre les deux
//    laisse un numéro non compté, que le prochain ReturnNewNum redonne ;
//  - le compte lu d'un en-tête est borné par ce que le fichier contient : un en-tête qui
//    annonce plus d'enregistrements que le fichier n'en tient est lu aussi loin qu'il se peut ;
//  - rien n'est gardé en mémoire : chaque écriture va droit au système.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "rqbase/platform/fichier.h"
#include "rqbase/storage/contexte_dossier.h"

static_assert(std::endian::native == std::endian::little, "les fichiers du dossier sont petit-boutistes");

namespace rqbase {

// Octet de l'enregistrement `no` : 0 pour -2 (l'en-tête), sinon no × taille, sur 64 bits.
// Un numéro négatif autre que -2 n'a pas d'octet (-1).
inline int64_t DecalageEnreg(long no, size_t taille) {
  if (no == -2) return 0;
  if (no < 0) return -1;
  return static_cast<int64_t>(no) * static_cast<int64_t>(taille);
}

// Ce que tous les fichiers d'enregistrements ont : le contexte, le fichier, le compte.
class TFicEnregBase {
 public:
  // Sans contexte (nul), l'objet n'a pas de fichier : lectures vides, écritures abandonnées.
  TFicEnregBase(TContexteDossier* gest, int type, size_t taille, bool creation);
  virtual ~TFicEnregBase() = default;
  TFicEnregBase(const TFicEnregBase&) = delete;
  TFicEnregBase& operator=(const TFicEnregBase&) = delete;

  // L'en-tête : par défaut un enregistrement vierge portant le compte dans son premier
  // mot. Un fichier dont l'en-tête porte davantage (les personnes) les remplace.
  virtual void EcritureEntete();
  virtual void LectureEntete();
  // Compte + 1 en mémoire et nouveau compte rendu ; l'en-tête suit l'enregistrement (voir
  // plus haut). Dossier en lecture seule : le compte monte en mémoire, rien ne s'écrit.
  long ReturnNewNum();

  long NbEnreg() const { return Nombre; }
  size_t TailleEnregistrement() const { return Taille; }
  TFichierBrut* Fichier() const { return Handle.get(); }
  TContexteDossier* Gest() const { return Gestion; }
  void Flush() {
    if (Handle) Handle->Flush();
  }

  // Lit l'enregistrement `no` dans `tampon` (mis à zéro d'abord) et affecte au dossier le
  // drapeau d'erreur selon l'issue. Rend true si des octets sont venus.
  bool LitEnreg(long no, void* tampon);
  // Lit d'un seul appel les `nombre` enregistrements qui suivent `no` (lui compris) dans
  // `tampon` (nombre × taille octets, mis à zéro d'abord) : la lecture anticipée d'un parcours.
  // Rend le nombre d'octets venus (0 sans fichier ou en erreur) ; un enregistrement dont aucun
  // octet n'est venu est illisible. Le drapeau d'erreur du dossier n'est pas touché : celui
  // qui sert un enregistrement du bloc le fixe comme LitEnreg l'aurait fait.
  int64_t LitEnregs(long no, long nombre, void* tampon);
  // Écrit l'enregistrement `no`, puis l'en-tête s'il couvre un numéro neuf. Un numéro
  // au-delà du compte lève ERqBase(texteException) sans rien écrire (sans texte : refusé
  // sans exception) ; 0 n'écrit rien.
  // Rend true quand l'enregistrement est sur le disque.
  bool EcritEnreg(long no, const void* tampon, const char* texteException);

 protected:
  // Ouvre (ou crée) le fichier puis, avec `creation`, écrit l'en-tête, sinon le lit.
  // Un fichier dont l'en-tête a sa propre forme le fait dans son constructeur (Demarre).
  void Demarre(bool creation);
  // Le plus grand compte que le fichier peut tenir d'après sa taille.
  long CompteMaxSelonTaille() const;
  // Écrit l'en-tête déjà rempli (Taille octets) ; le compte écrit devient celui du disque.
  bool EcritEnteteBrut(const void* enreg);

  TContexteDossier* Gestion;
  int Type;
  size_t Taille;
  std::unique_ptr<TFichierBrut> Handle;
  long Nombre = 0;
  long NombreSurDisque = 0;  // le compte que porte l'en-tête écrit
};

// Un fichier d'enregistrements de `Taille` octets dont l'en-tête porte le compte dans
// son premier mot. `Type` est le numéro TTypeFichier du fichier.
template <TTypeFichier TypeFic, size_t TailleFic>
class TFicEnregistrements : public TFicEnregBase {
 public:
  static constexpr size_t TailleEnreg = TailleFic;
  // Ouvre (ou crée) le fichier ; avec `creation` et un fichier ouvert, écrit l'en-tête,
  // sinon le lit. Un fichier qui ne s'ouvre pas laisse un objet vide (Fichier() nul).
  TFicEnregistrements(TContexteDossier* gest, bool creation) : TFicEnregBase(gest, TypeFic, TailleFic, creation) {
    Demarre(creation);
  }
};

// Lit un enregistrement du disque sans fichier d'enregistrements (en-tête d'un fichier
// ancien...) : mêmes règles de drapeau que TFicEnregBase::LitEnreg.
bool LitEnregistrement(TContexteDossier* gest, TFichierBrut* fichier, long no, void* tampon, size_t taille);
// Écrit un enregistrement : abandon sans bruit en lecture seule ou en erreur ; une
// écriture incomplète lève le drapeau et l'échec d'écriture. Rend true si tout est écrit.
bool EcritEnregistrement(TContexteDossier* gest, TFichierBrut* fichier, long no, const void* tampon, size_t taille);

}  // namespace rqbase
