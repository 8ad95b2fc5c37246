// Le motif des fichiers d'enregistrements : ouverture, en-tête, lecture et écriture d'un
// enregistrement, numéro neuf.
#include "rqbase/storage/fic_enreg.h"

#include <algorithm>
#include <climits>

#include "rqbase/util/erreur.h"

namespace rqbase {

bool LitEnregistrement(TContexteDossier* gest, TFichierBrut* fichier, long no, void* tampon, size_t taille) {
  std::memset(tampon, 0, taille);
  if (gest->EnErreur()) return false;
  const int64_t decalage = DecalageEnreg(no, taille);
  const int64_t lus = fichier && decalage >= 0 ? fichier->LitA(decalage, tampon, taille) : -1;
  if (lus < 0) std::memset(tampon, 0, taille);
  // Une lecture courte n'est pas un échec ; zéro octet en est un.
  const bool ok = lus > 0;
  gest->FixeErreur(!ok);
  return ok;
}

bool EcritEnregistrement(TContexteDossier* gest, TFichierBrut* fichier, long no, const void* tampon, size_t taille) {
  if (!gest->PeutEcrire()) return false;
  const int64_t decalage = DecalageEnreg(no, taille);
  if (fichier && decalage >= 0 && fichier->EcritTout(decalage, tampon, taille)) {
    gest->FixeErreur(false);
    return true;
  }
  gest->SignaleEcritureRatee();
  return false;
}

TFicEnregBase::TFicEnregBase(TContexteDossier* gest, int type, size_t taille, bool creation)
    : Gestion(gest), Type(type), Taille(taille) {
  (void)creation;
  // Sans contexte, un objet sans fichier (une table en mémoire seulement).
  if (gest) Handle = gest->OuvertureFichier(gest->FabriqueNomFichier(type), creation);
}

void TFicEnregBase::Demarre(bool creation) {
  Nombre = NombreSurDisque = 0;
  if (creation && Handle)
    EcritureEntete();
  else if (Handle)
    LectureEntete();
}

long TFicEnregBase::CompteMaxSelonTaille() const {
  const int64_t octets = Handle ? Handle->Taille() : 0;
  const int64_t n = octets / static_cast<int64_t>(Taille) - 1;
  return n < 0 ? 0 : static_cast<long>(std::min<int64_t>(n, INT32_MAX));
}

void TFicEnregBase::EcritureEntete() {
  if (!Gestion) return;
  std::unique_ptr<unsigned char[]> enreg(new unsigned char[Taille]());
  const int32_t compte = static_cast<int32_t>(Nombre);
  std::memcpy(enreg.get(), &compte, sizeof compte);
  EcritEnteteBrut(enreg.get());
}

bool TFicEnregBase::EcritEnteteBrut(const void* enreg) {
  // Un fichier qui n'a pas pu s'ouvrir n'a pas d'en-tête à réécrire : il est passé.
  if (!Handle) return false;
  if (!Gestion || !EcritEnregistrement(Gestion, Handle.get(), -2, enreg, Taille)) return false;
  NombreSurDisque = Nombre;
  return true;
}

void TFicEnregBase::LectureEntete() {
  // Un fichier vide (créé à l'ouverture parce qu'il manquait, ou vidé) n'a encore rien
  // donné : compte nul, sans lever le drapeau qui arrêterait tout le dossier.
  if (Handle && Handle->Taille() == 0) {
    Nombre = NombreSurDisque = 0;
    return;
  }
  std::unique_ptr<unsigned char[]> enreg(new unsigned char[Taille]());
  LitEnregistrement(Gestion, Handle.get(), -2, enreg.get(), Taille);
  int32_t compte = 0;
  std::memcpy(&compte, enreg.get(), sizeof compte);
  // Un compte que le fichier ne peut tenir est lu aussi loin que le fichier va.
  Nombre = std::clamp<long>(compte, 0, CompteMaxSelonTaille());
  NombreSurDisque = Nombre;
}

long TFicEnregBase::ReturnNewNum() { return ++Nombre; }

bool TFicEnregBase::LitEnreg(long no, void* tampon) {
  if (!Gestion) {
    std::memset(tampon, 0, Taille);
    return false;
  }
  return LitEnregistrement(Gestion, Handle.get(), no, tampon, Taille);
}

int64_t TFicEnregBase::LitEnregs(long no, long nombre, void* tampon) {
  if (nombre <= 0) return 0;
  const size_t octets = size_t(nombre) * Taille;
  std::memset(tampon, 0, octets);
  if (!Gestion || Gestion->EnErreur() || !Handle) return 0;
  const int64_t decalage = DecalageEnreg(no, Taille);
  if (decalage < 0) return 0;
  const int64_t lus = Handle->LitA(decalage, tampon, octets);
  if (lus < 0) {
    std::memset(tampon, 0, octets);
    return 0;
  }
  return lus;
}

bool TFicEnregBase::EcritEnreg(long no, const void* tampon, const char* texteException) {
  if (no > Nombre) {
    if (texteException) throw ERqBase(texteException);
    return false;
  }
  if (no == 0 || !Gestion) return false;
  if (!EcritEnregistrement(Gestion, Handle.get(), no, tampon, Taille)) return false;
  // L'enregistrement est là : l'en-tête peut maintenant le compter.
  if (no > NombreSurDisque) EcritureEntete();
  return !Gestion->EcritureRatee();
}

}  // namespace rqbase
