// TNote : lecture et écriture des en-têtes de notes et des chaînes de texte.
#include "rqbase/notes/note.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <unordered_set>
#include <vector>

#include "rqbase/notes/lecteur_rtf.h"
#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

constexpr size_t kCaracteresParBloc = 507;
// Blocs d'une lecture en lot : 512 Ko.
constexpr long kBlocsParLot = 1024;
// Blocs lus un à un avant de repasser à la lecture en lot.
constexpr int kBlocsUnAUn = 11;

// Un `Suivant` de chaîne de texte : hors de 1..NbBlocs, la chaîne s'arrête.
long SuivantBorne(int32_t suivant, const TFicNotes* fic) {
  return suivant >= 1 && fic->NoNoteValide(suivant) ? suivant : 0;
}

// Un nombre écrit en décimal ; tout autre texte vaut 0.
long LitNombre(const std::string& texte) {
  if (texte.empty()) return 0;
  errno = 0;
  char* fin = nullptr;
  const long long v = std::strtoll(texte.c_str(), &fin, 10);
  if (errno != 0 || fin == texte.c_str() || *fin != 0 || v < INT32_MIN || v > INT32_MAX) return 0;
  return static_cast<long>(v);
}

void PoseTexte(TNote::TEnreg& enreg, const char* texte, size_t longueur) {
  std::memset(enreg.Texte, 0, sizeof enreg.Texte);
  std::memcpy(enreg.Texte, texte, std::min(longueur, kCaracteresParBloc));
}

size_t LongueurTexte(const TNote::TEnreg& enreg) { return strnlen(enreg.Texte, kCaracteresParBloc); }

}  // namespace

TNote::TNote(TFicNotes* fic, long numero) : Fichier(fic) {
  if (numero < 1 && numero != -2) return;
  LectureEntete(numero);
}

void TNote::MenageEnreg(TEnreg& enreg) const { MenageEnregPour(enreg, Fichier); }

void TNote::MenageEnregPour(TEnreg& enreg, const TFicNotes* fic) {
  enreg.Texte[kCaracteresParBloc] = 0;
  // Un bloc de texte sans fin de ligne ni RTF est tenu pour abîmé. Un en-tête de notes
  // (Suivant -1) n'a ni l'un ni l'autre par nature : il garde son texte.
  if (enreg.Suivant != -1 && !std::strstr(enreg.Texte, "\r\n") && !std::strstr(enreg.Texte, "\\rtf"))
    enreg.Texte[0] = 0;
  if (enreg.Suivant < -1 || (fic && !fic->NoNoteValide(enreg.Suivant))) enreg.Suivant = 0;
}

bool TNote::LectureElementaire(long numero, TEnreg& enreg, TFicNotes* autre, bool menage) {
  TFicNotes* cible = autre ? autre : Fichier;
  std::memset(&enreg, 0, sizeof enreg);
  // Un numéro qui n'est pas un bloc écrit se lit vide, sans lecture : un pointeur abîmé
  // n'arrête pas le dossier.
  if (!cible || (numero != -2 && !cible->BlocEcrit(numero))) return false;
  const bool ok = cible->LitEnreg(numero, &enreg);
  if (!ok && cible->Gest()->EnErreur()) cible->Gest()->FixeGenreErreur(1);
  enreg.Texte[kCaracteresParBloc] = 0;
  const size_t n = std::strlen(enreg.Texte);
  std::memset(enreg.Texte + n, 0, sizeof enreg.Texte - n);
  if (menage && numero != -2) MenageEnregPour(enreg, cible);
  return ok;
}

bool TNote::EnregistrementElementaire(long numero, const TEnreg& enreg, TFicNotes* autre) {
  TFicNotes* cible = autre ? autre : Fichier;
  if (!cible || (numero < 1 && numero != -2)) return false;
  return cible->EcritEnreg(numero, &enreg, TFicNotes::TexteErreurEnreg);
}

long TNote::LectureEnLot(long numero, std::string& texte, bool& suite) {
  long restant = TFicNotes::BlocsMaxParNote;
  return LectureEnLot(Fichier, numero, texte, suite, restant);
}

long TNote::LectureEnLot(TFicNotes* cible, long numero, std::string& texte, bool& suite, long& restant) {
  suite = false;
  if (!cible || cible->Gest()->EnErreur() || !cible->BlocEcrit(numero) || restant <= 0) return 0;
  // Pas au-delà des blocs écrits : un petit fichier ne coûte pas un lot entier.
  long nombre = kBlocsParLot;
  while (nombre > 1 && !cible->BlocEcrit(numero + nombre - 1)) nombre /= 2;
  std::unique_ptr<TEnreg[]> lot(new TEnreg[static_cast<size_t>(nombre)]);
  const int64_t lus = cible->LitBlocs(numero, nombre, lot.get());
  if (lus <= 0) {
    cible->Gest()->FixeGenreErreur(1);
    return 0;
  }
  suite = lus > static_cast<int64_t>(TFicNotes::TailleBloc);
  const long charges = static_cast<long>((lus + TFicNotes::TailleBloc - 1) / TFicNotes::TailleBloc);
  long no = numero;
  do {
    TEnreg& enreg = lot[no - numero];
    enreg.Texte[kCaracteresParBloc] = 0;
    texte.append(enreg.Texte, LongueurTexte(enreg));
    --restant;
    no = SuivantBorne(enreg.Suivant, cible);
  } while (no != 0 && restant > 0 && no >= numero && no < numero + charges && cible->BlocEcrit(no));
  return no;
}

void TNote::LectureEntete(long numero) {
  if (numero != -3) NoFiche = numero;
  Liste.Clear();
  if (NoFiche == 0 || (NoFiche < 1 && NoFiche != -2)) return;
  TEnreg enreg;
  LectureElementaire(NoFiche, enreg, nullptr, true);
  Liste.SetCommaText(enreg.Texte);
  // Un titre sans position reçoit une position vide.
  if (Liste.Count() % 2 != 0) Liste.Add("");
}

bool TNote::EnregistrementEntete(long numero) { return EcritEntete(Fichier, numero); }

bool TNote::EcritEntete(TFicNotes* cible, long numero) {
  if (numero != -3) NoFiche = numero;
  if (NoFiche == 0) return true;
  // Le bloc 0 est l'en-tête du fichier : jamais un en-tête de notes.
  if (!cible || NoFiche < 1) return false;
  TEnreg enreg{};
  // Ce qui est sur le disque d'abord : un bloc de texte n'est jamais écrasé. Un bloc que
  // le disque n'a pas encore (tout juste donné) est libre.
  const bool surDisque = cible->BlocEcrit(NoFiche);
  if (surDisque) LectureElementaire(NoFiche, enreg, cible, false);
  if (cible->Gest()->EnErreur()) return false;
  if (Liste.Count() % 2 != 0) return false;
  if (surDisque && enreg.Suivant != -1) return false;
  std::string texte = Liste.Empty() ? std::string() : Liste.CommaText();
  // Voulu : un en-tête tient dans un bloc ; ce qui dépasse est coupé.
  if (texte.size() > kCaracteresParBloc) texte.resize(kCaracteresParBloc);
  PoseTexte(enreg, texte.data(), texte.size());
  enreg.Suivant = -1;
  cible->EcritEnreg(NoFiche, &enreg, TFicNotes::TexteErreurEnreg);
  return true;
}

void TNote::NouvelleFiche(long& numero) {
  if (numero > 0) {
    LectureEntete(numero);
    return;
  }
  if (!Fichier) return;
  numero = Fichier->ReturnNewNum();
  Liste.Clear();
  EcritEntete(Fichier, numero);
}

int TNote::RangTitre(const std::string& titre) const {
  const auto egaux = [](const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t k = 0; k < a.size(); ++k)
      if (MajusculeCp1252(static_cast<unsigned char>(a[k])) != MajusculeCp1252(static_cast<unsigned char>(b[k])))
        return false;
    return true;
  };
  for (int i = 0; i < Liste.Count(); i += 2)
    if (egaux(Liste[i], titre)) return i;
  return -1;
}

long TNote::GetPositionTitre(const std::string& titre) const {
  int rang = 0;
  if (titre.empty()) {
    if (Liste.Count() < 2) return 0;
  } else {
    rang = RangTitre(titre);
  }
  if (rang < 0 || rang + 1 >= Liste.Count()) return 0;
  return LitNombre(Liste[rang + 1]);
}

void TNote::SetPositionTitre(const std::string& titre, long position) {
  const std::string texte = std::to_string(position);
  const int rang = RangTitre(titre);
  if (rang < 0) {
    Liste.Add(titre);
    Liste.Add(texte);
  } else if (rang + 1 < Liste.Count()) {
    Liste[rang + 1] = texte;
  } else {
    Liste.Add(texte);
  }
}

bool TNote::Existe(const std::string& titre) const { return GetPositionTitre(titre) != 0; }

std::string TNote::LectureNote(const std::string& titre) { return LectureNoteRubrique(GetPositionTitre(titre)); }

std::string TNote::LectureNoteRubrique(long position) {
  std::string texte;
  if (position == 0 || !Fichier) return texte;
  long no = position;
  long restant = TFicNotes::BlocsMaxParNote;
  while (no != 0 && restant > 0 && Fichier->BlocEcrit(no)) {
    // Les premiers blocs un à un : une note courte ne coûte qu'un bloc lu.
    for (int k = 0; k < kBlocsUnAUn && no != 0 && restant > 0 && Fichier->BlocEcrit(no); ++k) {
      TEnreg enreg;
      if (!LectureElementaire(no, enreg)) return texte;
      texte.append(enreg.Texte, LongueurTexte(enreg));
      --restant;
      no = SuivantBorne(enreg.Suivant, Fichier);
    }
    if (no == 0 || restant <= 0 || !Fichier->BlocEcrit(no)) break;
    // Puis par lots de 512 Ko : une chaîne rangée à la suite se lit d'un coup.
    bool suite = false;
    no = LectureEnLot(Fichier, no, texte, suite, restant);
  }
  return texte;
}

std::string TNote::RecupNoteTxt(const std::string& titre) {
  std::string texte = LectureNote(titre);
  if (texte.empty()) return texte;
  if (texte[0] == '{') return ConvertirRtfTxt(texte, true);
  if (texte.size() > 100000) texte.resize(100000);
  return texte;
}

bool TNote::ModifNote(const std::string& titre, std::string& texte, TFicNotes* autre) {
  TFicNotes* cible = autre ? autre : Fichier;
  if (!cible || cible->Gest()->IsReadOnly()) return false;

  // Seule une chaîne RTF est reprise ; un texte ordinaire reçoit une chaîne neuve. Le bloc
  // de l'en-tête lui-même n'est jamais repris, même si un fichier abîmé le désigne comme
  // texte : la note écrite effacerait ses propres titres.
  long position = GetPositionTitre(titre);
  long suivantAncien = 0;
  if (position != 0) {
    TEnreg premier;
    if (position != NoFiche && LectureElementaire(position, premier, cible) && premier.Suivant != -1 &&
        std::strncmp(premier.Texte, "{\\rtf1", 6) == 0)
      suivantAncien = SuivantBorne(premier.Suivant, cible);
    else
      position = 0;
  }
  if (position == 0 && texte.empty()) return false;
  if (texte.empty()) {
    SupprimeNote(titre);
    return false;
  }

  // Les morceaux de 507 caractères et leurs blocs : ceux de l'ancienne chaîne tant qu'elle
  // dure, puis des blocs neufs. Un bloc déjà pris, ou qui n'est pas un bloc de texte, met
  // fin à la reprise : une chaîne abîmée (boucle, renvoi vers un en-tête) n'écrase rien.
  const size_t morceaux = std::min<size_t>((texte.size() + kCaracteresParBloc - 1) / kCaracteresParBloc,
                                           static_cast<size_t>(TFicNotes::BlocsMaxParNote));
  std::vector<long> blocs(morceaux);
  std::vector<bool> neuf(morceaux);
  std::unordered_set<long> pris;
  if (NoFiche > 0) pris.insert(NoFiche);
  for (size_t k = 0; k < morceaux; ++k) {
    long bloc = 0;
    if (k == 0 && position != 0) {
      bloc = position;
    } else if (k > 0 && suivantAncien != 0 && !pris.count(suivantAncien)) {
      TEnreg ancien;
      if (LectureElementaire(suivantAncien, ancien, cible) && ancien.Suivant != -1) {
        bloc = suivantAncien;
        suivantAncien = SuivantBorne(ancien.Suivant, cible);
      }
    }
    if (bloc == 0) {
      bloc = cible->ReturnNewNum();
      suivantAncien = 0;
      neuf[k] = true;
    }
    blocs[k] = bloc;
    pris.insert(bloc);
  }
  if (cible->Gest()->EnErreur()) return false;

  std::vector<TEnreg> enregs(morceaux);
  for (size_t k = 0; k < morceaux; ++k) {
    const size_t debut = k * kCaracteresParBloc;
    PoseTexte(enregs[k], texte.data() + debut, std::min(kCaracteresParBloc, texte.size() - debut));
    enregs[k].Suivant = k + 1 < morceaux ? static_cast<int32_t>(blocs[k + 1]) : 0;
  }
  // Les blocs neufs d'abord (une seule écriture pour une suite, puis l'en-tête qui les
  // compte), les blocs repris ensuite ; chaque suite de numéros consécutifs part d'un coup.
  for (const bool passeNeuve : {true, false}) {
    for (size_t k = 0; k < morceaux;) {
      if (neuf[k] != passeNeuve) {
        ++k;
        continue;
      }
      size_t fin = k + 1;
      while (fin < morceaux && neuf[fin] == passeNeuve && blocs[fin] == blocs[fin - 1] + 1) ++fin;
      if (!cible->EcritBlocs(blocs[k], static_cast<long>(fin - k), &enregs[k])) return false;
      k = fin;
    }
  }

  if (position != 0) return false;
  // Une chaîne neuve : l'en-tête la désigne, maintenant qu'elle est écrite.
  SetPositionTitre(titre, blocs[0]);
  if (NoFiche != 0 && EcritEntete(cible, -3)) return false;
  if (cible->Gest()->EnErreur()) return false;
  // Là où il est, l'en-tête ne peut s'écrire (ce n'est pas un en-tête, ou il n'y en a pas
  // encore) : il part dans un bloc neuf, que l'appelant gardera.
  const long entete = cible->ReturnNewNum();
  EcritEntete(cible, entete);
  return true;
}

bool TNote::AjoutNoteContenuVide(const std::string& titre) {
  if (RangTitre(titre) >= 0) return false;
  Liste.Add(titre);
  Liste.Add("0");
  EcritEntete(Fichier, -3);
  return true;
}

void TNote::SupprimeNote(const std::string& titre) {
  if (titre.empty()) {
    while (!Liste.Empty()) Liste.Delete(0);
  } else if (const int rang = RangTitre(titre); rang >= 0) {
    if (rang + 1 < Liste.Count()) Liste.Delete(rang + 1);
    Liste.Delete(rang);
  }
  EcritEntete(Fichier, -3);
}

void TNote::Assign(const TNote& autre) {
  Fichier = autre.Fichier;
  NoFiche = autre.NoFiche;
  Liste = autre.Liste;
}

}  // namespace rqbase
