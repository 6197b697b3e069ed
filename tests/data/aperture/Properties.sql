CREATE TABLE RKExifNumberProperty (modelId integer primary key, versionId integer, propertyKey varchar,
    numberProperty decimal, modDate timestamp);
CREATE INDEX RKExifNumberProperty_versionId_index on RKExifNumberProperty(versionId);
CREATE INDEX RKExifNumberProperty_numberProperty_index on RKExifNumberProperty(numberProperty);
CREATE INDEX RKExifNumberProperty_modDate_index on RKExifNumberProperty(modDate);
CREATE UNIQUE INDEX RKExifNumberProperty_propertyKey_versionId_index on
    RKExifNumberProperty(propertyKey,versionId);
CREATE TABLE RKUniqueString (modelId integer primary key, stringProperty varchar);
CREATE INDEX RKUniqueString_stringProperty_index on RKUniqueString(stringProperty);
CREATE TABLE RKIptcProperty (modelId integer primary key, versionId integer, propertyKey varchar,
    stringId integer, searchStringId integer, modDate timestamp);
CREATE INDEX RKIptcProperty_versionId_index on RKIptcProperty(versionId);
CREATE INDEX RKIptcProperty_stringId_index on RKIptcProperty(stringId);
CREATE INDEX RKIptcProperty_searchStringId_index on RKIptcProperty(searchStringId);
CREATE INDEX RKIptcProperty_modDate_index on RKIptcProperty(modDate);
CREATE UNIQUE INDEX RKIptcProperty_propertyKey_versionId_index on RKIptcProperty(propertyKey,versionId);
CREATE TABLE RKExifStringProperty (modelId integer primary key, versionId integer, propertyKey varchar,
    stringId integer, searchStringId integer, modDate timestamp);
CREATE INDEX RKExifStringProperty_versionId_index on RKExifStringProperty(versionId);
CREATE INDEX RKExifStringProperty_stringId_index on RKExifStringProperty(stringId);
CREATE INDEX RKExifStringProperty_searchStringId_index on RKExifStringProperty(searchStringId);
CREATE INDEX RKExifStringProperty_modDate_index on RKExifStringProperty(modDate);
CREATE UNIQUE INDEX RKExifStringProperty_propertyKey_versionId_index on
    RKExifStringProperty(propertyKey,versionId);