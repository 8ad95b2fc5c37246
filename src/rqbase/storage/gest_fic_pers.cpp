// TFicPersons : l'en-tête du fichier des personnes, sa réparation, et les accès bruts.
#include "rqbase/storage/gest_fic_pers.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "rqbase/platform/attributs.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {

int asNoStradoCujus = 1;

void MenageDsChnVide(char* champ, size_t taille) {
  champ[taille - 1] = 0;
  const size_t longueur = std::strlen(champ);
  std::memset(champ + longueur, 0, taille - longueur);
}

TFicPersons::TFicPersons(TContexteDossier* gest, bool creation) : TFicEnregBase(gest, tfPersons, sizeof(TEnregPersonne), creation) {
  Nombre = NombreSurDisque = 0;
  if (creation && Handle) {
    NoDeCujus = -1;
    Signet1 = -1;
    gest->DateCreation = gest->DateModification = gest->DateTroisieme = Maintenant();
    gest->NoteEcriture();
    gest->Entier1 = gest->Entier2 = -1;
    EcritureEntete();
  } else if (!Handle) {
    gest->FixeErreur(true);
  } else {
    LectureEntete();
  }
}

TFicPersons::~TFicPersons() = default;

void TFicPersons::EcritureEntete() {
  TEnregPersonne e{};
  e.Pere.No = static_cast<int32_t>(Nombre);
  e.Mere.No = static_cast<int32_t>(NoDeCujus);
  e.Enfants[0].No = static_cast<int32_t>(Signet1);
  e.Enfants[1].No = static_cast<int32_t>(Signet2);
  std::strncpy(e.Nom, Gestion->Titre.c_str(), sizeof e.Nom - 1);
  char entier[24], sosa[24];
  std::snprintf(entier, sizeof entier, "%ld", Gestion->Entier1);
  std::snprintf(sosa, sizeof sosa, "%i", asNoStradoCujus);
  const std::string texte = TexteTDT(Gestion->DateCreation) + "$" + TexteTDT(Gestion->DateModification) + "$" +
                            TexteTDT(Gestion->DateTroisieme) + "$" + entier + "$" + sosa;
  // Le champ coupe le texte à 70 caractères.
  std::strncpy(e.Prenoms, texte.c_str(), sizeof e.Prenoms - 1);
  e.Note = static_cast<int32_t>(Gestion->CopieImages);
  e.Reserve3 = static_cast<int32_t>(Gestion->Entier2);
  EcritEnteteBrut(&e);
}

void TFicPersons::LectureEntete() {
  TEnregPersonne e;
  TFicEnregBase::LitEnreg(-2, &e);
  MenageDsChnVide(e.Nom, sizeof e.Nom);
  MenageDsChnVide(e.Prenoms, sizeof e.Prenoms);
  Nombre = e.Pere.No;
  NoDeCujus = e.Mere.No;
  Signet1 = e.Enfants[0].No;
  Signet2 = e.Enfants[1].No;
  Gestion->Titre = e.Nom;

  const std::string texte = e.Prenoms;
  Gestion->DateCreation = RetourneTDT(EltNo(1, texte, '$'));
  Gestion->DateModification = RetourneTDT(EltNo(2, texte, '$'));
  const std::string troisieme = EltNo(3, texte, '$');
  if (!troisieme.empty()) Gestion->DateTroisieme = RetourneTDT(troisieme);
  const std::string entier = EltNo(4, texte, '$');
  if (!entier.empty()) Gestion->Entier1 = std::atol(entier.c_str());
  const std::string sosa = EltNo(5, texte, '$');
  asNoStradoCujus = sosa.empty() ? 1 : std::atoi(sosa.c_str());

  Gestion->CopieImages = e.Note;
  Gestion->Entier2 = e.Reserve3;

  const bool sansDollar = texte.find('$') == std::string::npos;
  if (sansDollar || Nombre < 1) {
    if (sansDollar) Gestion->DateCreation = Gestion->DateModification = Maintenant();
    if (Nombre < 1) {
      const int64_t taille = Handle ? Handle->Taille() : -1;
      Nombre = taille < 0 ? -1 : static_cast<long>(std::min<int64_t>(taille / 644 - 1, INT32_MAX));
      if (Nombre < 1) {
        Gestion->FixeErreur(true);
        return;
      }
      if (NoDeCujus == 0) NoDeCujus = 1;
      if (Signet1 < 1 || Signet1 > Nombre) Signet1 = NoDeCujus;
      if (Signet2 < 1 || Signet2 > Nombre) Signet2 = NoDeCujus;
    }
    NombreSurDisque = Nombre;
    EcritureEntete();
  }
  // Un en-tête qui annonce plus de personnes que le fichier n'en tient (abîmé, ou forgé) :
  // on lit aussi loin que le fichier va, sans jamais réécrire au-delà.
  Nombre = std::min(Nombre, std::max(CompteMaxSelonTaille(), 1L));
  NombreSurDisque = Nombre;
}

uint32_t TFicPersons::GetHashCode(const std::u16string& s) {
  uint32_t somme = 0;
  // Voulu : la boucle s'arrête avant le dernier caractère.
  for (size_t i = 1; i < s.size(); ++i) somme += static_cast<uint32_t>(s[i - 1]) * static_cast<uint32_t>(i);
  return somme;
}

bool TFicPersons::GetFileDateAndTime(double& dateHeure) {
  const std::string chemin = Gestion->FabriqueNomFichier(tfPersons);
  const bool immediate = Handle ? Handle->EcritureImmediate() : true;
  Handle.reset();
  const bool ok = DateModificationFichier(chemin, dateHeure);
  Handle = Gestion->OuvertureFichier(chemin, false);
  if (Handle && !immediate) Handle->ChangeEcritureImmediate(false);
  return ok;
}

void TFicPersons::VideBufferPerson() {
  if (CacheP) CacheP->RazBuffers();
}

}  // namespace rqbase
