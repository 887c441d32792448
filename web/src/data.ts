import { malformed } from './errors.js';

const MEDIA_TYPES: readonly (readonly [RegExp, string])[] = [
  [/^\x89PNG\r\n/, 'image/png'],
  [/^\xff\xd8\xff/, 'image/jpeg'],
  [/^BM/, 'image/bmp'],
  [/^(\xef\xbb\xbf)?\s*<(\?xml|svg|!DOCTYPE svg|!--)/, 'image/svg+xml'],
];

/** Binary data as the service delivers it: base64 text, most often a picture. */
export class SignPadData {
  readonly base64: string;

  constructor(base64: string) {
    this.base64 = base64.replace(/\s/g, '');
    const whole = this.base64.endsWith('=') ? this.base64.length % 4 === 0 : this.base64.length % 4 !== 1;
    if (!whole || !/^[A-Za-z0-9+/]*={0,2}$/.test(this.base64)) throw malformed('data that is not base64');
  }

  get bytes(): Uint8Array<ArrayBuffer> {
    return Uint8Array.from(atob(this.base64), (character) => character.charCodeAt(0));
  }

  /** Read off the data: image/png, image/jpeg, image/bmp, image/svg+xml or application/octet-stream. */
  get mediaType(): string {
    const start = atob(this.base64.slice(0, 64)); // what an image type number means is up to the pad's library
    const known = MEDIA_TYPES.find(([pattern]) => pattern.test(start));
    return known ? known[1] : 'application/octet-stream';
  }

  get blob(): Blob {
    return new Blob([this.bytes], { type: this.mediaType });
  }

  get dataURL(): string {
    return `data:${this.mediaType};base64,${this.base64}`;
  }
}
