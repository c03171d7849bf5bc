// The lines of the virtual bus's control language that a person's hands become. Pure.
import type { Channel } from '../api/Shapes.js';
import { numberOf } from './select.js';
import { isReversed, mostSteps } from './steps.js';

const twoDigits = (byte: number) => byte.toString(16).toUpperCase().padStart(2, '0');

export type Verb = 'pull' | 'plug';

// A contact stays as it was left: closed by one press, opened by the next.
export function contactLine(channel: Channel, isClosed = channel.raw === 1): string {
  const verb = isClosed ? 'release' : 'press';
  return `${verb} ${channel.id.charAt(0)} ${twoDigits(numberOf(channel))}`;
}

export function levelLine(channel: Channel, value: number): string {
  const { min, max } = channel;
  const [least, greatest] = [min ?? 0, max ?? mostSteps];
  const steps = Math.round(((value - least) / (greatest - least)) * mostSteps);
  const byte = isReversed(channel) ? mostSteps - steps : steps;
  return `set ${channel.id.charAt(0)} ${twoDigits(numberOf(channel))} ${twoDigits(byte)}`;
}

export function keyLine(address: string, code: number | null): string {
  return code === null ? `release ${address}` : `press ${address} ${twoDigits(code)}`;
}

export const turnLine = (address: string, steps: number) => `turn ${address} ${steps}`;
export const cableLine = (verb: Verb) => `cable ${verb}`;

export function cardLine(address: string, verb: Verb, kind?: string): string {
  return ['card', address, verb, ...(kind === undefined ? [] : [kind])].join(' ');
}

export interface Fault {
  name: 'late' | 'split' | 'noise' | 'drop' | 'mute' | 'length' | 'address';
  on: string;
  off: string;
}

export const faults: readonly Fault[] = [
  { name: 'late', on: 'late 40ms', off: 'late 0ms' },
  { name: 'split', on: 'split 3', off: 'split 1' },
  { name: 'noise', on: 'noise 1%', off: 'noise 0%' },
  { name: 'drop', on: 'drop next 20', off: 'drop next 0' },
  { name: 'mute', on: 'mute 10s', off: 'mute 0s' },
  { name: 'length', on: 'wrong-length 20', off: 'wrong-length 0' },
  { name: 'address', on: 'wrong-address 20', off: 'wrong-address 0' },
];

// The bus says a fault in its own words, with what is left of it: "drop next 7".
export function isOn(fault: Fault, shown: readonly string[]): boolean {
  const [word = ''] = fault.on.split(' ');
  return shown.some((line) => line.split(' ')[0] === word);
}
