// What a register's value means, field by field.
import type { Field } from "./types";

export const widthOf = (field: Field): number => field.bits.reduce((width, [high, low]) => width + high - low + 1, 0);

export function rawOf(field: Field, value: number | bigint): bigint {
  return field.bits.reduce((raw, [high, low]) => {
    const width = BigInt(high - low + 1);
    return (raw << width) | ((BigInt(value) >> BigInt(low)) & ((1n << width) - 1n));
  }, 0n);
}

// As a number in the field's unit.
export function numberOf(field: Field, value: number | bigint): number {
  const raw = rawOf(field, value);
  const number = Number(field.signed ? BigInt.asIntN(widthOf(field), raw) : raw);
  return field.scaled ? number * field.scale + field.offset : number;
}

// In words: its choice, in its unit, or as a number.
export function meaningOf(field: Field, value: number | bigint): string {
  const raw = rawOf(field, value);
  const choice = field.choices.find(([number]) => BigInt(number) === raw);
  if (choice) return choice[1];
  if (field.scaled) return `${Number(numberOf(field, value).toPrecision(12))}${field.unit ? ` ${field.unit}` : ""}`;
  if (field.signed) return String(numberOf(field, value));
  return widthOf(field) === 1 ? String(raw) : `0x${raw.toString(16).toUpperCase()}`;
}

export const bitsText = (field: Field): string =>
  field.bits.map(([high, low]) => (high === low ? `${high}` : `${high}:${low}`)).join(",");

export const hex = (value: number | bigint, bits: number): string =>
  `0x${value.toString(16).toUpperCase().padStart(Math.ceil(bits / 4), "0")}`;
