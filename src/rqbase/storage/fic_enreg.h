// Le motif des fichiers d'enregistrements d'un dossier, écrit une fois.
//
// Un fichier d'enregistrements est plat : des enregistrements de taille fixe numérotés
// à partir de 1, l'enregistrement N à l'octet N × taille, l'enregistrement 0 étant
// l'en-tête dont le premier mot de 32 bits est le compte des numéros donnés.
// Numéros réservés : -2 désigne l'en-tête (octet 0), -3 garde le numéro de l'objet.
//
// Contrat commun :
//  - une lecture qui rend zéro octet (ou échoue) lève le drapeau d'erreur du dossier,
//    une lecture réussie le baisse (le drapeau est affecté, pas cumulé) ; une lecture
//    courte n'est pas un échec, la fin manquante reste à zéro ;
//  - une écriture est abandonnée sans bruit si le dossier est en lecture seule ou en
//    erreur ; une écriture qui rend zéro octet lève le drapeau ;
//  - rien n'est gardé en mémoire : chaque écriture va droit au système.
// Chaque classe nommée (TFicExtPersons, TFicPersSuppr...) garde son texte d'exception
// et ses particularités ; ce modèle ne porte que le motif.
#pragma once
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "rqbase/platform/fichier.h"

static_assert(std::endian::native == std::endian::little, "les fichiers du dossier sont petit-boutistes");

namespace rqbase {

class TGestFichier;

// Octet de l'enregistrement `no` : 0 pour -2 (l'en-tête), sinon no × taille.
// Les décalages sont sur 32 bits dans ces fichiers.
inline int64_t DecalageEnreg(long no, size_t taille) {
  return no == -2 ? 0 : static_cast<int64_t>(static_cast<uint32_t>(static_cast<int32_t>(no) * static_cast<int32_t>(taille)));
}

// Lit `taille` octets à l'enregistrement `no` dans `tampon` (mis à zéro d'abord) et
// affecte au dossier le drapeau d'erreur selon l'issue. Rend true si des octets sont venus.
// Dossier déjà en erreur : tampon à zéro, rien n'est lu, le drapeau reste.
bool LitEnregistrement(TGestFichier* gest, TFichierBrut* fichier, long no, void* tampon, size_t taille);
// Écrit l'enregistrement ; même règle pour le drapeau. N'écrit rien (et rend false)
// si le dossier est en lecture seule ou en erreur.
bool EcritEnregistrement(TGestFichier* gest, TFichierBrut* fichier, long no, const void* tampon, size_t taille);

// Un fichier d'enregistrements de `Taille` octets dont l'en-tête porte le compte dans
// son premier mot. `Type` est le numéro TTypeFichier du fichier.
template <int Type, size_t Taille>
class TFicEnregistrements {
 public:
  static constexpr size_t TailleEnreg = Taille;

  // Ouvre (ou crée) le fichier ; avec `creation` et un fichier ouvert, écrit l'en-tête,
  // sinon le lit. Un fichier qui ne s'ouvre pas laisse un objet vide (Fichier() nul).
  TFicEnregistrements(TGestFichier* gest, bool creation);
  virtual ~TFicEnregistrements() = default;
  TFicEnregistrements(const TFicEnregistrements&) = delete;
  TFicEnregistrements& operator=(const TFicEnregistrements&) = delete;

  // Un enregistrement vierge portant le compte dans son premier mot, écrit en -2.
  void EcritureEntete();
  // Lit l'enregistrement -2 et en prend le compte, sauf dossier en erreur.
  void LectureEntete();
  // Compte + 1, en-tête écrit tout de suite, nouveau compte rendu. Dossier en
  // lecture seule : le compte monte en mémoire, l'écriture de l'en-tête est perdue.
  long ReturnNewNum();

  long NbEnreg() const { return Nombre; }
  TFichierBrut* Fichier() const { return Handle.get(); }
  TGestFichier* Gest() const { return Gestion; }
  void Flush() {
    if (Handle) Handle->Flush();
  }

 protected:
  TGestFichier* Gestion;
  std::unique_ptr<TFichierBrut> Handle;
  long Nombre = 0;
};

// Ouverture par le dossier ; défini dans gest_fic.cpp.
std::unique_ptr<TFichierBrut> OuvreFichierDuDossier(TGestFichier* gest, int type, bool creation);
bool DossierEnErreur(const TGestFichier* gest);

template <int Type, size_t Taille>
TFicEnregistrements<Type, Taille>::TFicEnregistrements(TGestFichier* gest, bool creation) : Gestion(gest) {
  Handle = OuvreFichierDuDossier(gest, Type, creation);
  Nombre = 0;
  if (creation && Handle)
    EcritureEntete();
  else if (Handle)
    LectureEntete();
}

template <int Type, size_t Taille>
void TFicEnregistrements<Type, Taille>::EcritureEntete() {
  unsigned char enreg[Taille] = {};
  const int32_t compte = static_cast<int32_t>(Nombre);
  std::memcpy(enreg, &compte, sizeof compte);
  EcritEnregistrement(Gestion, Handle.get(), -2, enreg, Taille);
}

template <int Type, size_t Taille>
void TFicEnregistrements<Type, Taille>::LectureEntete() {
  unsigned char enreg[Taille] = {};
  LitEnregistrement(Gestion, Handle.get(), -2, enreg, Taille);
  int32_t compte = 0;
  std::memcpy(&compte, enreg, sizeof compte);
  Nombre = compte;
}

template <int Type, size_t Taille>
long TFicEnregistrements<Type, Taille>::ReturnNewNum() {
  ++Nombre;
  EcritureEntete();
  return Nombre;
}

}  // namespace rqbase
