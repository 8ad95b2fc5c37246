// TFicNotes : en-tête du fichier des notes, lectures et écritures de blocs consécutifs,
// et ce que le fichier offre aux champs (ChargeNote, NoteVide, partie cachée des lieux).
#include "rqbase/notes/fic_notes.h"

#include <algorithm>
#include <atomic>
#include <cstring>

#include "rqbase/notes/lecteur_rtf.h"
#include "rqbase/notes/note.h"
#include "rqbase/platform/preferences.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/erreur.h"

namespace rqbase {

namespace {

std::string ChargeBooleanParDefaut(bool valeur, int style) {
  if (style == 80) return valeur ? Ressource(1908) : std::string();
  if (style == 81 || style == 82) return Ressource(style * 2 + (valeur ? 0 : 1) + 1742);
  return std::string();
}

std::atomic<TFicNotes::TChargeBoolean> gChargeBoolean{&ChargeBooleanParDefaut};

const char kMarqueLieuxCaches[] = "#Ne pas supprimer : Suggestions lieux a cacher";

}  // namespace

TFicNotes::TFicNotes(TContexteDossier* gest, bool creation) : TFicEnregBase(gest, tfNot, TailleBloc, creation) {
  if (!Handle) return;
  if (creation) {
    EcritureEntete();
  } else if (Handle->Taille() == 0) {
    // Un dossier d'avant les notes : le fichier vient d'être créé vide, il reçoit son
    // en-tête ; en lecture seule il reste vide, sans erreur.
    if (Gestion->PeutEcrire() && !Handle->EnLectureSeule()) EcritureEntete();
  } else {
    LectureEntete();
  }
}

void TFicNotes::EcritureEntete() {
  TNote::TEnreg enreg{};
  enreg.Suivant = static_cast<int32_t>(Nombre);
  EcritEnteteBrut(&enreg);
}

void TFicNotes::LectureEntete() {
  TNote::TEnreg enreg{};
  LitEnreg(-2, &enreg);
  // Un compte que le fichier ne peut tenir est lu aussi loin que le fichier va.
  Nombre = std::clamp<long>(enreg.Suivant, 0, CompteMaxSelonTaille());
  NombreSurDisque = Nombre;
}

int64_t TFicNotes::LitBlocs(long premier, long nombre, void* tampon) {
  const size_t taille = static_cast<size_t>(nombre) * TailleBloc;
  std::memset(tampon, 0, taille);
  if (Gestion->EnErreur()) return 0;
  const int64_t lus = Handle && premier >= 1 ? Handle->LitA(DecalageEnreg(premier, TailleBloc), tampon, taille) : -1;
  if (lus < 0) std::memset(tampon, 0, taille);
  Gestion->FixeErreur(lus <= 0);
  return std::max<int64_t>(lus, 0);
}

bool TFicNotes::EcritBlocs(long premier, long nombre, const void* tampon) {
  if (nombre <= 0 || premier < 1) return false;
  if (premier + nombre - 1 > Nombre) throw ERqBase(TexteErreurEnreg);
  if (!Gestion->PeutEcrire()) return false;
  if (!Handle || !Handle->EcritTout(DecalageEnreg(premier, TailleBloc), tampon, static_cast<size_t>(nombre) * TailleBloc)) {
    Gestion->SignaleEcritureRatee();
    return false;
  }
  Gestion->FixeErreur(false);
  // Les blocs sont là : l'en-tête peut maintenant les compter.
  if (premier + nombre - 1 > NombreSurDisque) EcritureEntete();
  return !Gestion->EcritureRatee();
}

std::string TFicNotes::ChargeNote(long noNote, const std::string& titre, int style, bool nettoie) {
  std::string resultat;
  if (noNote == 0) {
    if (style == 152) resultat = ChargeBoolean(false, style);
  } else {
    TNote note(this, noNote);
    if (style == 150)
      resultat = note.LectureNote(titre);
    else if (style == 151)
      resultat = note.RecupNoteTxt(titre);
    else if (style == 152)
      resultat = ChargeBoolean(note.Existe(titre), style);
  }
  if (!resultat.empty() && nettoie) resultat = ClearDeletedPlace(resultat);
  return resultat;
}

bool TFicNotes::NoteVide(long noNote, int ligne, const std::vector<TLigneNote>& liste) {
  if (noNote == 0) return true;
  const auto vide = [&](const TLigneNote& l) {
    if (!l.EstChamp || l.Cache) return true;
    return ConvertirRtfTxt(ChargeNote(noNote, l.Titre, 150, false), true).empty();
  };
  if (ligne == -1) return std::all_of(liste.begin(), liste.end(), vide);
  if (ligne < 0 || static_cast<size_t>(ligne) >= liste.size()) return true;
  return vide(liste[static_cast<size_t>(ligne)]);
}

bool TFicNotes::RecupAffResumeNote() {
  return LitPreferenceEntier(SectionPreferences(), "Aff notes dans resume", 0) != 0;
}

std::string TFicNotes::ClearDeletedPlace(const std::string& texte) {
  const size_t marque = texte.find(kMarqueLieuxCaches);
  if (marque == std::string::npos) return texte;
  std::string garde = texte.substr(0, marque);
  std::string queue = texte.substr(marque + sizeof kMarqueLieuxCaches - 1);
  // Chaque élément entre crochets part, tant qu'un crochet ouvrant vient avant le fermant.
  for (;;) {
    const size_t ouvrant = queue.find('[');
    if (ouvrant == std::string::npos) break;
    const size_t fermant = queue.find(']');
    if (fermant != std::string::npos && fermant < ouvrant) break;
    const size_t fin = queue.find(']', ouvrant);
    queue.erase(ouvrant, fin == std::string::npos ? std::string::npos : fin - ouvrant + 1);
  }
  std::string net;
  net.reserve(queue.size());
  for (size_t i = 0; i < queue.size(); ++i) {
    if (queue.compare(i, 5, "\\line") == 0) {
      i += 4;
      continue;
    }
    if (queue[i] == '\n' || queue[i] == '\r') continue;
    net += queue[i];
  }
  return garde + net;
}

void TFicNotes::FixeChargeBoolean(TChargeBoolean fonction) {
  gChargeBoolean = fonction ? fonction : &ChargeBooleanParDefaut;
}

std::string TFicNotes::ChargeBoolean(bool valeur, int style) { return gChargeBoolean.load()(valeur, style); }

}  // namespace rqbase
