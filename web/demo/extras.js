// WPS settings and picture, fingerprint, the pad's screen: single commands beside the signing.
(() => {
  'use strict';

  const { SignPadError } = window.MVSignPad;
  const { t, onLanguage } = window.Demo;
  const find = (id) => document.getElementById(id);

  const WPS_APPLICATIONS = ['WPS', 'ET', 'WPP'];
  const WPS_SETTINGS = ['wps-name', 'wps-width', 'wps-date', 'wps-fit', 'wps-save'];
  const MODELS_WITH_LCD = new Set(['Alder', 'Birch', 'Cedar']);
  const MODELS_WITH_FINGERPRINT = new Set(['Cedar']);

  /** What the page is about at the moment; demo.js hands it over at each change. */
  let now = { pad: null, model: 'Alder', size: { width: 0, height: 0 }, openModel: null, signature: null };

  /** The form shows the settings of the chosen application: until then they can be neither changed nor saved. */
  let areSettingsLoaded = false;

  /** A line that tells what came of the last command, in the language of the moment. */
  function statusLine(id) {
    let words = () => '';
    const render = () => { find(id).textContent = words(); };
    onLanguage(render);
    return (key, values) => {
      words = key ? () => t(key, values) : () => '';
      render();
    };
  }

  const wpsStatus = statusLine('wps-status');
  const padStatus = statusLine('pad-status');
  const fingerprintStatus = statusLine('fingerprint-status');

  /** Runs a command of a button; what goes wrong stands in the status line beside it. */
  async function attempt(status, work) {
    status();
    try {
      await work();
    } catch (error) {
      if (!(error instanceof SignPadError)) throw error;
      status(error.code === 'invalid-argument' ? 'nameRefused' : 'failed', { reason: error.message });
    }
  }

  const chosenApp = () => document.querySelector('input[name=wps-app]:checked').value;

  async function loadSettings() {
    const app = chosenApp();
    areSettingsLoaded = false;
    render();
    const settings = await now.pad.getWPSSettings(app);
    if (app !== chosenApp()) return;
    find('wps-name').value = settings.name;
    find('wps-width').value = settings.penWidth;
    find('wps-date').checked = settings.dateTime;
    find('wps-fit').checked = settings.autoFit;
    areSettingsLoaded = true;
    render();
  }

  async function saveSettings() {
    await now.pad.updateWPSSettings({
      app: chosenApp(),
      name: find('wps-name').value,
      penWidth: find('wps-width').valueAsNumber,
      dateTime: find('wps-date').checked,
      autoFit: find('wps-fit').checked,
    });
    wpsStatus('settingsSaved');
  }

  async function makePicture() {
    const isOwnInk = await now.pad.getSize() === now.signature.points.length;
    const path = isOwnInk && await now.pad.wpsSignConfirmed(chosenApp());
    wpsStatus(path ? 'pictureMade' : 'padHoldsOther', { path });
  }

  /** The lower right quarter of the pad's screen. */
  async function showFingerprint() {
    const { width, height } = now.size;
    await now.pad.setDisplayedFPImageAt({ canvasWidth: width, canvasHeight: height, left: Math.round(width * 0.75),
      top: Math.round(height * 0.5), width: Math.round(width * 0.25), height: Math.round(height * 0.5) });
    fingerprintStatus('fingerprintShown');
  }

  async function fetchFingerprint() {
    const image = await now.pad.getFingerPrintImage(find('fingerprint-only').checked);
    if (image) {
      find('fingerprint-picture').src = image.dataURL;
      find('fingerprint-picture').hidden = false;
    }
    fingerprintStatus(image ? 'fingerprintGot' : 'fingerprintNone');
  }

  function buildApplications() {
    const { radio } = window.Demo;
    find('wps-apps').querySelector('.options').append(...WPS_APPLICATIONS.map((app, i) => radio('wps-app', app, `app${app}`, i === 0)));
    find('wps-apps').addEventListener('change', () => attempt(wpsStatus, loadSettings));
  }

  function render() {
    const { pad, model, openModel, signature } = now;
    const isOpen = openModel === model;
    const hasLcd = MODELS_WITH_LCD.has(model);
    find('wps-apps').disabled = !pad;
    for (const id of WPS_SETTINGS) find(id).disabled = !pad || !areSettingsLoaded;
    find('wps-picture').disabled = !pad || !isOpen || !signature;
    find('wps-picture').title = signature ? '' : t('pictureNeedsInk');
    find('lcd').hidden = !hasLcd;
    find('lcd-on').disabled = find('lcd-off').disabled = !isOpen;
    find('fingerprint-picture').alt = t('fingerprintAlt');
    find('fingerprint').hidden = !MODELS_WITH_FINGERPRINT.has(model);
    find('fingerprint-get').disabled = find('fingerprint-show').disabled = !isOpen;
  }

  /** What was told and shown of the signature before, that of another person perhaps. */
  function forgetSignature() {
    wpsStatus();
    padStatus();
    fingerprintStatus();
    find('fingerprint-picture').hidden = true;
    find('fingerprint-picture').removeAttribute('src');
  }

  /** Takes over what changed; a new connection brings its own settings. */
  function update(changes) {
    const isNewPad = changes.pad && changes.pad !== now.pad;
    now = { ...now, ...changes };
    if (changes.signature === null) forgetSignature();
    render();
    if (isNewPad) attempt(wpsStatus, loadSettings);
  }

  function start() {
    buildApplications();
    find('wps').addEventListener('submit', (event) => {
      event.preventDefault();
      attempt(wpsStatus, saveSettings);
    });
    find('wps-picture').addEventListener('click', () => attempt(wpsStatus, makePicture));
    find('fingerprint-get').addEventListener('click', () => attempt(fingerprintStatus, fetchFingerprint));
    find('fingerprint-show').addEventListener('click', () => attempt(fingerprintStatus, showFingerprint));
    find('lcd-on').addEventListener('click', () => attempt(padStatus, () => now.pad.openLCD()));
    find('lcd-off').addEventListener('click', () => attempt(padStatus, () => now.pad.closeLCD()));
    onLanguage(render);
    render();
  }

  window.Demo.extras = { start, update };
})();
