#include "frame/langkeys.h"

#include "frame/inifile.h"

#include <QFile>
#include <QHash>

namespace fenwork {

namespace {

// The vocabulary by section, in its fixed order: a section's name, then its keys; an indented line
// goes on with the section above.
const char *const kVocabulary = R"(
Menus <abcHlp> <about> <addTuneToLst> <chkVersion> <choiceLst> <closeAll> <closeFile> <contact>
    <copy> <copyTune> <cut> <cutTune> <defineRepTune> <delTune> <emptyLst> <exportBmp> <exportFile>
    <exportJpeg> <exportMidi> <exportPdf> <exportPng> <exportTune> <exportWeb> <extract> <extras>
    <file> <fileTools> <hlp> <impClipboard> <impMidi> <import> <inserAuto> <lstExport> <lstPlayLst>
    <lstPlayTune> <lstSupTune> <lstToAbc> <lstToLst> <lstToSet> <midiExt> <new> <newFile> <newGrp>
    <newSet> <newTune> <openDir> <openFile> <openGrp> <openHlp> <openUrl> <options> <paste>
    <pasteTune> <playAllFile> <playFltrFile> <playTune> <playTunes> <printAbc> <printFile>
    <printLst> <printTune> <quickScan> <quit> <removeTune> <save> <saveAll> <saveAllSelTunes>
    <saveAs> <saveFichSelTunes> <saveTunesFltr> <scanRep> <sendFileByMail> <sendLstByMail>
    <sendTuneByMail> <shellAbc2abc> <shellAbc2midi> <shellAbc2ps> <shellMidi2abc> <showDoublons>
    <tabEdit> <tempo> <tools> <translate> <tune> <tuneTools> <webSite>
MainForm <abcEditor> <anywhere> <applyfiltering> <cancel> <chp0> <chp11> <chp13> <chp15> <chp17>
    <chp18> <chp19> <chp1> <chp20> <chp24> <chp26> <chp28> <chp2> <chp31> <chp3> <chp4> <chp7>
    <delay> <delfiltering> <domainAll> <domainFltr> <droneGen> <edit> <explorer> <exportFilePdf>
    <exportLstPdf> <exportTunePdf> <fields> <file> <fileBody> <fileHeader> <files> <find>
    <findInRefs> <infoFind3> <iniPersoNotes> <invSearch> <lineWrapping> <linkDrone> <lstTunes>
    <melodyFragment> <memDrone> <memMask> <modeEdition2> <modeEdition> <mskClear> <nextTune>
    <noCaseSens> <noFindInRefs> <noTabs> <persoNotes> <playAllTunes> <playSelectTunes> <prevTune>
    <printFile> <printLst> <printTune> <quickScan> <reference> <resFind0> <resFind1> <resFind2>
    <setTune> <startOnly> <templates> <tempo> <toTemplate> <tune> <tuneBody> <tuneHeader>
    <tunefiltering> <updateScore> <validSave> <validSaveQuit> <validate> <voiceMixer> <volume>
    <withoutTtl>
Mainform <contents> <empty> <trashbox> <trashboxHeader> <tune> <tunes>
TTText <adbk> <armKeyb> <bgSite> <choiceLst> <closeAbcFile> <closeAllAbc> <colsToInc> <comment>
    <contChord> <contGrace> <createNewTune> <delMsk> <delTune> <delay> <displOneLine> <doTemplate>
    <editTune> <expAsTxt> <exportPdf> <exportTuneMidi> <extract> <fileTools> <gmDef> <grpAddItem>
    <grpRemoveItem> <hlp> <keepDelay> <libelChp> <localAbcHlp> <loopPlaying> <lstMskDrone>
    <lstMskFind> <memMskDrone> <memMskFind> <newAbcFile> <noChords> <noGrace> <noRepeats> <openFile>
    <openGrp> <page> <pause> <pauseScore> <pitch> <play> <playLst> <playOneLine> <playTunes> <print>
    <programKey> <recip> <rename> <restor> <rewind> <saveAllFile> <saveFile> <scanRep> <scnPattern>
    <scnResLst> <seeDrone> <seeKbd> <seeWinVol> <send> <stop> <titleDef> <transposDown> <transposUp>
    <tuneCopy> <tuneCut> <tunePaste> <tuneTools> <uncoment> <undo> <unitTranspose> <useTemplate>
    <viewTabs> <writeNote>
TrashPanel <chooseFile> <delDate> <delpermanent> <emptyTrash> <fileNotExist> <fromFile> <restore>
    <restoreElsewhere> <restoreOrigin> <tuneInTrashBox>
Msg <ABCfile> <CleanedFile> <TSVfile> <Xmissing> <addPart> <aliasFile> <allFiles> <askFavName>
    <askOpen> <bmpFile> <checkRights> <chkFail> <chkOk> <chooseAlias> <chooseFont> <chooseTmplName>
    <chooseTool> <chpInval> <circErr> <circInGrp> <clipInval> <clipNotSaved> <closeEdBeforeSearch>
    <codeAlreadyExist> <codeNotExist> <confKillMsk> <confToolsDef> <continue> <copyExtr>
    <createNew1> <createNew2> <createNew3> <currentVersion> <dblGrp> <defaultAlias> <delAllInser>
    <delTmpl> <disconnected> <dwnldFail> <editCur> <emptyChoiceLst> <emptyFilename> <exitEdit>
    <expInProc> <exportAbc> <exportAbcMidi> <exportAbcTo> <exportFile> <exportFileMidi>
    <exportFileTo> <exportTune> <exportTuneMidi> <exportTuneTo> <fail2htm> <fileModified>
    <fileNotFound> <fileRestDone> <filenotfound> <grpNotFound> <gsDegrad> <gsdllErr> <infoMidi2Abc>
    <infoRestore> <inserTmpl> <jpegFile> <keyNotDefined> <lackingX> <lockedText> <midiFile>
    <mskExist> <nbRepTune> <newAbcFile> <newEntry> <newVer2> <newVersion> <noCleanedFile>
    <noCloseRepeat> <noDrone> <noFileFound> <noHdrAdv> <noMultipage> <noTuneFound> <noedit>
    <oneVfield> <openABCfile> <openFail> <openFmtFile> <openMidiFile> <openSyn> <overSet> <pdfFile>
    <playError> <pngFile> <quitConfirm> <readonlyFile> <recov> <recovTune1> <recovTune2>
    <regexFailed> <reorgInPrcs> <saveABCas> <saveBefore> <saveLstPara> <saveModif> <saveTabsFile>
    <saveTmpl> <selBeforeNewInser> <selToKey> <selectFile> <selectTarget> <sortInPrcs> <spaceForbid>
    <textFile> <tmplExist> <tmplNotFound> <toolNotExist> <trashSelected> <tuneToErase> <tuneToTrash>
    <unableElem> <unfillTrash> <useTmpl> <versionDispo> <viewFile> <viewHtm> <wrongRadicHtm>
msg <prevInstance>
MSG <dblXinFile>
Common <close> <new> <open> <save>
Options <abcStr> <apDatFolder> <apply> <askAlias> <associate> <audioInfo> <cancel> <cautionTools>
    <closeBrck> <compactSet> <dblClick> <defGM> <defaultTmpl> <delTmpl> <dirInfo> <editInfo>
    <fileExpanded> <fmtFile> <gs> <gsFWarn> <gsFonts> <infoExt> <infoTools> <lang> <lastExportDir>
    <miscInfo> <nbRepeat> <newTmpl> <newVersion> <noSaveHdrFile> <openFiles> <optCmd> <options>
    <progKeys> <reinitOp> <saveBak> <saveModifTmpl> <saveSize> <saveZoom> <seeApDat> <seeScore>
    <selFirstTune> <showDoublons> <showTips> <size> <tabAudio> <tabEditor> <tabFiles> <tabMisc>
    <tabTmpl> <tabTools> <templates> <tempoDef> <tmplFileName> <tmplInfo> <tool2abc> <tool2midi>
    <tool2ps> <toolMidi2abc> <toolsDefault> <trashMax> <ttrDir> <ttrFont> <txtTmpl> <useHdr>
    <visuBitmap> <visuPdf>
Export <addTabs> <blocTtr> <bold> <bot> <cancel> <center> <compSpace> <composer> <continueAll>
    <directPrnt> <docAbcm2ps> <expDoc> <expFile> <export> <fmt> <font> <ftr> <ftrTxt> <handWr>
    <handWrInfo> <hdr> <hdrAndFtr> <hdrTxt> <inputDoc> <italic> <jumpFormat> <left> <margins> <misc>
    <musicOnly> <oneTunePg> <output> <outputDoc> <pageAndMargins> <paper> <parts> <partsAndVoices>
    <partsSpace> <preview> <printP> <prntTempo> <prntX> <reinit> <resol> <right> <scale> <size>
    <splitTune> <staffSep> <staffWidth> <subTtr> <tabs> <top> <ttrTune> <vocalSpace> <vocals>
    <voices> <wBelow> <words>
Tools <actionChp> <addChords> <addChp> <analyse> <analyseFile> <analyseOk> <badTunes> <chords>
    <chordsAcc> <clean> <cleanBslh> <cleanChords> <cleanFile> <cleanGrace> <cleanHtml> <cleanRem>
    <cleanRemFld> <cleanRoll> <cleanSpChp> <cleanSpace> <cleanSpcBar> <cleanStar> <cleanSymbEx>
    <cleanSymbPlus> <cleanTab> <cleanTune> <fich> <fileTools> <gestChp> <gestCmt> <gestDiv>
    <gestScore> <gestSpc> <gestSymb> <gstChp> <indexFrom> <info0> <info1> <infoA1> <keyNotHdl>
    <keySort1> <libelChp> <modifAllChp> <modifFirstChp> <modifLastChp> <onePerBar> <reIndexFile>
    <reindex> <reinitIndex> <restProc> <restaur> <sort> <sortFile> <toIdx> <tuneTools> <twoPerBar>
    <wholeFile>
TabMker <abcm2ps> <addSep> <blankPath> <cantEdit> <descr> <formTtr> <info1> <info2a> <info2b>
    <instrName> <instrument> <isModif> <isTemplate> <keyLimit> <keySize> <keySpace> <keys> <more>
    <nbHoles> <nbOct> <noteName> <overwrite> <titleSize>
Htm <advanced> <cancel> <chooseNewDir> <doc> <fileName> <footer> <fullFile> <htmlMaker> <htmlRoot>
    <inclChp> <indexFile> <info> <invalDirName> <lnkFullFile> <make> <newDir> <pdfSetup> <ttrHtm>
    <writefooter>
Extract <B> <C> <D> <H> <K> <M> <O> <R> <S> <Tall> <Tmain> <Z> <choose> <copySrc> <exportIdx>
    <extract> <fieldExtr> <noFind>
Groups <delGrp> <editGrp> <fich> <groups> <grp> <grpContent> <grpToAbc> <info2> <info3> <info4>
    <info> <newGrp> <openGrp> <rename>
LstPara <cols> <comp> <instr> <makeLst> <mes> <mus> <rtm> <sep> <temp> <ton> <ttr>
ScanRep <caseSensitive> <doRecursive> <doScan> <fileMsk> <formTtr> <found> <nofound> <regEx> <wait>
InserAuto <autoInsertion> <delete> <deleteAll> <info> <insert> <newInsertion> <textToInsert>
    <textToReplace>
Tips <11> <count> <daytip> <displAtStart> <doYouKnow> <nextTip>
OpenDir <allFiles> <cancel> <dirToOpen> <open> <openFilesFromDir> <openTypFile> <other>
Mail <atach> <sendFile> <subject> <subjectDef> <to> <txtDef>
OpenUrl <addToFav> <fav> <open> <openUrl>
Tempo <cumul> <info> <inst> <tempoMtr>
About <contact> <title>
GM
TTT <delFav>
)";

// Keys that came with the program's later pages and our own additions, by section.
const char *const kLaterKeys = R"(
MainForm <infoFind1> <infoFind2>
TTText <zoom> <fullScreen> <pitchMain> <delDrone> <pitchDrone> <delFav> <helpBack> <helpForward>
    <helpHome> <helpFind>
Msg <ABCfileX> <ABCfileM> <CSVfile> <file> <tune> <recovOpen> <replaceByTmpl> <toolMissing>
    <toolLooked> <toolInstall> <iniNotSaved> <noAudio> <badMidi> <noSoundFont> <cantEdit>
Options <soundFont> <updateServer> <contactAddress>
Tempo <period> <hlp>
)";

void addLines(const char *text, QList<QString> &order, QHash<QString, QStringList> &bySection)
{
    const QStringList lines = QString::fromUtf8(text).split(u'\n', Qt::SkipEmptyParts);
    QString section;
    for (const QString &line : lines) {
        QStringList words = line.split(u' ', Qt::SkipEmptyParts);
        if (!line.startsWith(u' ')) {
            section = words.takeFirst();
            if (!bySection.contains(section))
                order.append(section);
        }
        bySection[section] += words;
    }
}

} // namespace

QList<LangKey> languageKeys(int tipCount)
{
    QList<QString> order;
    QHash<QString, QStringList> bySection;
    addLines(kVocabulary, order, bySection);
    addLines(kLaterKeys, order, bySection);
    // The numbered families.
    for (int n = 0; n <= 32; ++n)
        bySection[QStringLiteral("MainForm")] << QStringLiteral("<chp%1>").arg(n);
    for (int n = 0; n < 128; ++n)
        bySection[QStringLiteral("GM")] << QStringLiteral("<gm%1>").arg(n);
    for (int n = 0; n < 4; ++n)
        bySection[QStringLiteral("Options")] << QStringLiteral("<dblClc%1>").arg(n);
    for (int n = 1; n <= tipCount; ++n)
        bySection[QStringLiteral("Tips")] << QStringLiteral("<%1>").arg(n);

    QList<LangKey> keys;
    for (const QString &section : std::as_const(order)) {
        QStringList sorted = bySection.value(section);
        sorted.sort();
        sorted.removeDuplicates();
        for (const QString &key : std::as_const(sorted))
            keys.append({ section, key });
    }
    return keys;
}

int tipCountOf(const QString &languageFile)
{
    return IniFile::readValue(languageFile, QStringLiteral("Tips"), QStringLiteral("<count>"), {}).toInt();
}

std::optional<QList<LangKey>> missingLanguageKeys(const QString &languageFile, const QList<LangKey> &keys)
{
    QFile file(languageFile);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QHash<QString, QString> values = IniFile::parseValues(file.readAll());
    QList<LangKey> missing;
    for (const LangKey &key : keys)
        if (values.value(IniFile::valueKey(key.section, key.key)).isEmpty())
            missing.append(key);
    return missing;
}

} // namespace fenwork
